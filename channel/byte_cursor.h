#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// A byte cursor over a payload, little-endian. Every operation returns the number of bytes asked for, or 0.
// The order of the operations is the order of their slots: the interface is shared with other modules. It is never
// deleted through.
struct IIPCDataIO {
    virtual std::uint32_t Reserve(std::uint32_t n) = 0;
    virtual std::uint32_t WriteUInt32(std::uint32_t value) = 0;
    virtual std::uint32_t WriteUInt8(std::uint8_t value) = 0;
    virtual std::uint32_t Write(const void* src, std::uint32_t n) = 0;
    virtual std::uint32_t ReadUInt32(std::uint32_t* dst) = 0;
    virtual std::uint32_t ReadUInt8(std::uint8_t* dst) = 0;
    virtual std::uint32_t Read(void* dst, std::uint32_t n) = 0;

protected:
    ~IIPCDataIO() = default;
};

namespace channel {

// What all cursors have in common, inline because every field of a payload goes through it.

// Whether `length` bytes hold n more behind `position`. The sum cannot wrap, and one past 31 bits is larger than any
// payload.
inline bool Holds(std::int32_t length, std::uint32_t position, std::uint32_t n) {
    return static_cast<std::int64_t>(length) >= static_cast<std::int64_t>(position) + n;
}

// Copies n bytes; false, and nothing copied, when a pointer is null or `capacity` is too small.
inline bool CopyChecked(void* dst, std::uint32_t capacity, const void* src, std::uint32_t n) {
    if (n == 0) return true;
    if (dst == nullptr || src == nullptr || n > capacity) return false;
    std::memcpy(dst, src, n);
    return true;
}

// Reads n bytes at `position`, which moves when they are there. A read that finds too few bytes copies nothing, leaves
// the position where it was and returns 0; reading may go on with a shorter field.
inline std::uint32_t ReadBytes(const char* data, std::int32_t length, std::uint32_t& position, void* dst,
                               std::uint32_t n) {
    if (dst == nullptr || !Holds(length, position, n)) return 0;
    if (data != nullptr && CopyChecked(dst, n, data + position, n)) position += n;
    return n;
}

// Reads bytes that somebody else keeps, for as long as the reader lives. Writes nothing.
class ByteReader final : public IIPCDataIO {
public:
    explicit ByteReader(std::string_view bytes) : m_bytes(bytes) {}

    std::uint32_t Reserve(std::uint32_t) override { return 0; }
    std::uint32_t WriteUInt32(std::uint32_t) override { return 0; }
    std::uint32_t WriteUInt8(std::uint8_t) override { return 0; }
    std::uint32_t Write(const void*, std::uint32_t) override { return 0; }
    std::uint32_t ReadUInt32(std::uint32_t* dst) override { return Read(dst, 4); }
    std::uint32_t ReadUInt8(std::uint8_t* dst) override { return Read(dst, 1); }
    std::uint32_t Read(void* dst, std::uint32_t n) override {
        return ReadBytes(m_bytes.data(), static_cast<std::int32_t>(m_bytes.size()), m_position, dst, n);
    }

    std::uint32_t Position() const { return m_position; }  // [bytes] read so far

private:
    const std::string_view m_bytes;
    std::uint32_t m_position = 0;
};

// Writes to memory that is large enough, or only counts when given null. Reads nothing.
class ByteWriter final : public IIPCDataIO {
public:
    explicit ByteWriter(char* memory) : m_memory(memory) {}

    std::uint32_t Reserve(std::uint32_t n) override { return n; }
    std::uint32_t WriteUInt32(std::uint32_t value) override { return Write(&value, 4); }
    std::uint32_t WriteUInt8(std::uint8_t value) override { return Write(&value, 1); }
    std::uint32_t Write(const void* src, std::uint32_t n) override {
        if (m_memory != nullptr && n != 0) std::memcpy(m_memory + m_position, src, n);
        m_position += n;
        return n;
    }
    std::uint32_t ReadUInt32(std::uint32_t*) override { return 0; }
    std::uint32_t ReadUInt8(std::uint8_t*) override { return 0; }
    std::uint32_t Read(void*, std::uint32_t) override { return 0; }

    std::size_t Position() const { return m_position; }  // [bytes] written so far

private:
    char* const m_memory;
    std::size_t m_position = 0;
};

}  // namespace channel
