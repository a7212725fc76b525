#include "channel/payload.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

#include "base/text.h"

namespace {

constexpr std::uint32_t kMarker = 1;
constexpr std::uint32_t kMaxNarrow = 0x7FFFFFFF;  // [bytes]
constexpr std::uint32_t kMaxWide = 0x3FFFFFFF;    // [UTF-16 units]

std::uint32_t ReadCount(IIPCDataIO& io) {
    std::uint32_t count = 0;
    io.ReadUInt32(&count);
    return count;
}

bool ReadMarker(IIPCDataIO& io) {
    std::uint32_t marker = kMarker;
    io.ReadUInt32(&marker);
    return marker == kMarker;
}

// ---- UTF-16 units inside wide strings, for both widths of wchar_t

constexpr std::size_t kBlock = 64;  // units widened at a time, through a local array that cannot overlap

void JoinSurrogates(std::wstring& text) {
    std::size_t joined = 0;
    for (std::wstring_view rest = text; !rest.empty();)
        text[joined++] = static_cast<wchar_t>(base::TakeCharacter(rest));
    text.resize(joined);
}

// The first half of the string's buffer is free, the second half holds size() UTF-16 units: spreads them over the whole
// and joins surrogate pairs, so the string may become shorter. Unpaired surrogates stay. Only for wchar_t of 32 bits.
void WidenUnitsInPlace(std::wstring& text) {
    const std::size_t length = text.size();
    const char* const units = reinterpret_cast<const char*>(text.data()) + 2 * length;
    unsigned surrogates = 0;
    for (std::size_t done = 0; done < length; done += kBlock) {
        std::uint16_t block[kBlock];
        const std::size_t n = std::min(kBlock, length - done);
        std::memcpy(block, units + 2 * done, 2 * n);
        for (std::size_t i = 0; i < n; ++i) {
            surrogates |= (block[i] & 0xF800u) == 0xD800u;
            text[done + i] = static_cast<wchar_t>(block[i]);
        }
    }
    if (surrogates != 0) JoinSurrogates(text);
}

}  // namespace

void ReadString(IIPCDataIO& io, std::string& text) {
    const std::uint32_t length = ReadCount(io);
    text.assign(length, '\0');
    if (length <= kMaxNarrow) io.Read(text.data(), length);
}

void ReadWString(IIPCDataIO& io, std::wstring& text) {
    const std::uint32_t length = ReadCount(io);
    text.assign(length, L'\0');
    if (length > kMaxWide) return;
    if constexpr (sizeof(wchar_t) == 2) {
        io.Read(text.data(), length * 2);
    } else {
        char* const secondHalf = reinterpret_cast<char*>(text.data()) + 2 * static_cast<std::size_t>(length);
        if (io.Read(secondHalf, length * 2) != 0) WidenUnitsInPlace(text);
    }
}

void ReadRecord(IIPCDataIO& io, AccessoryVersionDataInfo& record) {
    ReadString(io, record.deviceKey);
    ReadWString(io, record.modelId);
    ReadWString(io, record.imagePath);
    ReadWString(io, record.version);
    record.descLines.clear();
    record.descLines.resize(ReadCount(io));
    for (std::wstring& line : record.descLines) ReadWString(io, line);
    io.Read(&record.reserved, 8);
    std::uint8_t isDriver = record.isDriver;
    io.Read(&isDriver, 1);
    record.isDriver = isDriver != 0;
}

void ReadRecord(IIPCDataIO& io, PkgDownloadProcess& record) {
    if (!ReadMarker(io)) return;
    ReadString(io, record.deviceKey);
    io.Read(&record.progress, 4);
}

void ReadRecord(IIPCDataIO& io, std::vector<AccessoryVersionDataInfo>& list) {
    if (!ReadMarker(io)) return;
    list.clear();
    list.resize(ReadCount(io));
    for (AccessoryVersionDataInfo& record : list) ReadRecord(io, record);
}

void WriteString(IIPCDataIO& io, const std::string& text) {
    const auto length = static_cast<std::uint32_t>(text.size());
    io.WriteUInt32(length);
    io.Write(text.data(), length);
}

void WriteWString(IIPCDataIO& io, const std::wstring& text) {
    const std::u16string units = base::Utf16FromWide(text);
    const auto length = static_cast<std::uint32_t>(units.size());
    io.WriteUInt32(length);
    io.Write(units.data(), length * 2);
}

void WriteRecord(IIPCDataIO& io, const AccessoryVersionDataInfo& record) {
    WriteString(io, record.deviceKey);
    WriteWString(io, record.modelId);
    WriteWString(io, record.imagePath);
    WriteWString(io, record.version);
    io.WriteUInt32(static_cast<std::uint32_t>(record.descLines.size()));
    for (const std::wstring& line : record.descLines) WriteWString(io, line);
    io.Write(&record.reserved, 8);
    io.WriteUInt8(record.isDriver ? 1 : 0);
}

void WriteRecord(IIPCDataIO& io, const PkgDownloadProcess& record) {
    io.WriteUInt32(kMarker);
    WriteString(io, record.deviceKey);
    io.WriteUInt32(static_cast<std::uint32_t>(record.progress));
}

void WriteRecord(IIPCDataIO& io, const std::vector<AccessoryVersionDataInfo>& list) {
    io.WriteUInt32(kMarker);
    io.WriteUInt32(static_cast<std::uint32_t>(list.size()));
    for (const AccessoryVersionDataInfo& record : list) WriteRecord(io, record);
}

namespace channel {

std::optional<int> Decimal::Number() const {
    int number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<Bytes> detail::Allocate(std::size_t size) {
    if (size == 0) return Bytes(nullptr, 0);
    if (size > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
    std::unique_ptr<char[]> memory(new (std::nothrow) char[size]);
    if (!memory) return std::nullopt;
    return Bytes(std::move(memory), size);
}

void Read(std::string_view, NoPayload&) {}

void Read(std::string_view bytes, DeviceKey& payload) { payload.key = bytes.substr(0, bytes.find('\0')); }

void Read(std::string_view bytes, Decimal& payload) { payload.digits = bytes; }

void Read(std::string_view bytes, Progress& payload) {
    ByteReader reader(bytes);
    ReadRecord(reader, payload);
}

void Read(std::string_view bytes, AccessoryList& payload) {
    ByteReader reader(bytes);
    ReadRecord(reader, payload);
}

}  // namespace channel
