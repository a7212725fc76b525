#include "channel/record_codec.h"

#include "channel/utf16_units.h"

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
    const std::u16string units = ToUtf16(text);
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
