#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "channel/byte_cursor.h"

// The records that travel serialized inside a payload, in declaration and wire order. Values.

// Progress of one package's download or installation.
struct PkgDownloadProcess {
    std::string deviceKey;      // ANSI code page, exactly as the list gave it
    std::int32_t progress = 0;  // [percent] 100 and more means installing
};

// One accessory that has an update.
struct AccessoryVersionDataInfo {
    std::string deviceKey;   // ANSI code page
    std::wstring modelId;    // also the resource id of the display name
    std::wstring imagePath;  // relative to the skin folder
    std::wstring version;
    std::vector<std::wstring> descLines;  // device information
    std::uint64_t reserved = 0;           // carried along, not used
    bool isDriver = false;                // driver or firmware; otherwise a companion app
};

// Decoders and encoders of the records over a byte cursor.
//
// Fields stand one behind the other without padding, little-endian:
//     uint32, int32    4 bytes              narrow string  uint32 byte count, the bytes
//     reserved         8 bytes              wide string    uint32 count of UTF-16 units, the units (2 bytes each)
//     bool             1 byte               vector         uint32 element count, the elements
// The two payloads, a progress record and a list, begin with a uint32 marker, which is 1.
//
// A decoder never reports failure. What cannot be read leaves 0, or for a text whose content is missing a text of the
// announced length in zero characters; decoding goes on at the same byte. A marker other than 1 leaves the destination
// untouched. No bound but memory limits counts: an absurd one throws std::bad_alloc or std::length_error.
//
// Where wchar_t has 32 bits, surrogate pairs are joined while reading and split while writing.
void ReadString(IIPCDataIO& io, std::string& text);
void ReadWString(IIPCDataIO& io, std::wstring& text);
void ReadRecord(IIPCDataIO& io, AccessoryVersionDataInfo& record);
void ReadRecord(IIPCDataIO& io, PkgDownloadProcess& record);
void ReadRecord(IIPCDataIO& io, std::vector<AccessoryVersionDataInfo>& list);

void WriteString(IIPCDataIO& io, const std::string& text);
void WriteWString(IIPCDataIO& io, const std::wstring& text);
void WriteRecord(IIPCDataIO& io, const AccessoryVersionDataInfo& record);
void WriteRecord(IIPCDataIO& io, const PkgDownloadProcess& record);
void WriteRecord(IIPCDataIO& io, const std::vector<AccessoryVersionDataInfo>& list);

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
