#include "channel/utf16_units.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

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

}  // namespace

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
