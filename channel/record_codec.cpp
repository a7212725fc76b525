#include "channel/record_codec.h"

#include <algorithm>
#include <cstring>

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

bool IsHigh(wchar_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLow(wchar_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void JoinSurrogates(std::wstring& text) {
    std::size_t out = 0;
    for (std::size_t in = 0; in < text.size(); ++in, ++out) {
        wchar_t c = text[in];
        if (IsHigh(c) && in + 1 < text.size() && IsLow(text[in + 1])) {
            c = static_cast<wchar_t>(0x10000 + ((c - 0xD800) << 10) + (text[in + 1] - 0xDC00));
            ++in;
        }
        text[out] = c;
    }
    text.resize(out);
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

std::u16string ToUtf16(const std::wstring& text) {
    std::u16string units;
    units.reserve(text.size());
    for (const wchar_t c : text) {
        const auto code = static_cast<std::uint32_t>(c);
        if (code > 0x10FFFF) {
            units += u'\xFFFD';
        } else if (code > 0xFFFF) {
            units += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            units += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        } else {
            units += static_cast<char16_t>(code);
        }
    }
    return units;
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
