#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "channel/record_codec.h"

// What messages carry, and the bytes of it.
//
//     const std::optional<channel::Bytes> bytes = channel::Encode(channel::DeviceKey{"pen"});
//     const auto key = channel::Decode<channel::DeviceKey>(bytes->View());
namespace channel {

struct NoPayload {};

// A device's key [ANSI code page]; on the wire with its terminating zero.
struct DeviceKey {
    std::string key;
};

// A signed number; on the wire its digits, without a zero.
struct Decimal {
    Decimal() = default;
    explicit Decimal(int number) : digits(std::to_string(number)) {}

    std::optional<int> Number() const;  // none when `digits` is no number or too large

    std::string digits;
};

using Progress = PkgDownloadProcess;
using AccessoryList = std::vector<AccessoryVersionDataInfo>;

// What docs/protocol.md calls each kind.
template <class Payload>
inline constexpr const char* kPayloadName = nullptr;
template <>
inline constexpr const char* kPayloadName<NoPayload> = "none";
template <>
inline constexpr const char* kPayloadName<DeviceKey> = "device key";
template <>
inline constexpr const char* kPayloadName<Decimal> = "number";
template <>
inline constexpr const char* kPayloadName<Progress> = "progress";
template <>
inline constexpr const char* kPayloadName<AccessoryList> = "list";

// The bytes of payloads that are texts, without a copy: they live as long as the payload.
inline std::string_view BytesOf(const NoPayload&) { return {}; }
inline std::string_view BytesOf(const DeviceKey& payload) { return {payload.key.c_str(), payload.key.size() + 1}; }
inline std::string_view BytesOf(const Decimal& payload) { return payload.digits; }

// Bytes of their own.
class Bytes {
public:
    Bytes(std::unique_ptr<char[]> data, std::size_t size) : m_data(std::move(data)), m_size(size) {}

    char* Data() const { return m_data.get(); }  // null when there are none
    std::int32_t Size() const { return static_cast<std::int32_t>(m_size); }
    std::string_view View() const { return {m_data.get(), m_size}; }

private:
    std::unique_ptr<char[]> m_data;
    std::size_t m_size;
};

namespace detail {

std::optional<Bytes> Allocate(std::size_t size);  // none when memory is exhausted or a message cannot be that long

template <class Record>
void Write(IIPCDataIO& io, const Record& record) {
    if constexpr (requires { BytesOf(record); }) {
        io.Write(BytesOf(record).data(), static_cast<std::uint32_t>(BytesOf(record).size()));
    } else {
        WriteRecord(io, record);
    }
}

}  // namespace detail

// The bytes of a payload, exactly as many as it needs; none when memory is exhausted.
template <class Payload>
std::optional<Bytes> Encode(const Payload& payload) {
    ByteWriter size(nullptr);
    detail::Write(size, payload);
    std::optional<Bytes> bytes = detail::Allocate(size.Position());
    if (!bytes) return std::nullopt;
    ByteWriter writer(bytes->Data());
    detail::Write(writer, payload);
    return bytes;
}

void Read(std::string_view bytes, NoPayload& payload);
void Read(std::string_view bytes, DeviceKey& payload);  // up to the first zero or the end
void Read(std::string_view bytes, Decimal& payload);
void Read(std::string_view bytes, Progress& payload);       // as ReadRecord: never fails,
void Read(std::string_view bytes, AccessoryList& payload);  // leaves zeros for what is not there

template <class Payload>
Payload Decode(std::string_view bytes) {
    Payload payload;
    Read(bytes, payload);
    return payload;
}

}  // namespace channel
