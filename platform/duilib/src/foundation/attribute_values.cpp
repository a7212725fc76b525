#include "foundation/attribute_values.h"

#include "foundation/geometry_math.h"

namespace DuiLib {

namespace {

std::wstring_view Trim(std::wstring_view text) {
    while (!text.empty() && text.front() == L' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == L' ') text.remove_suffix(1);
    return text;
}

template <std::size_t N>
std::optional<std::array<int, N>> ParseInts(std::wstring_view text) {
    std::array<int, N> values;
    for (std::size_t i = 0; i < N; ++i) {
        const std::size_t comma = text.find(L',');
        if ((comma == text.npos) != (i + 1 == N)) return {};
        const std::optional<int> value = ParseInt(text.substr(0, comma));
        if (!value) return {};
        values[i] = *value;
        if (comma != text.npos) text.remove_prefix(comma + 1);
    }
    return values;
}

int HexDigit(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    if (c >= L'a' && c <= L'f') return c - L'a' + 10;
    return -1;
}

std::optional<Alignment> ParseAlignment(std::wstring_view text, std::wstring_view start, std::wstring_view end) {
    if (text == start) return Alignment::kStart;
    if (text == L"center") return Alignment::kCenter;
    if (text == end) return Alignment::kEnd;
    return {};
}

}  // namespace

std::optional<int> ParseInt(std::wstring_view text) {
    text = Trim(text);
    const bool negative = !text.empty() && text.front() == L'-';
    if (negative) text.remove_prefix(1);
    if (text.empty()) return {};
    std::int64_t value = 0;
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9') return {};
        value = ClampExtent(value * 10 + (c - L'0'));
    }
    return static_cast<int>(negative ? -value : value);
}

std::optional<bool> ParseBool(std::wstring_view text) {
    if (text == L"true") return true;
    if (text == L"false") return false;
    return {};
}

std::optional<CDuiSize> ParseSize(std::wstring_view text) {
    const auto values = ParseInts<2>(text);
    if (!values) return {};
    return CDuiSize{(*values)[0], (*values)[1]};
}

std::optional<CDuiRect> ParseRect(std::wstring_view text) {
    const auto values = ParseInts<4>(text);
    if (!values) return {};
    return CDuiRect{(*values)[0], (*values)[1], (*values)[2], (*values)[3]};
}

std::optional<CDuiColor> ParseColor(std::wstring_view text) {
    if (!text.empty() && text.front() == L'#') text.remove_prefix(1);
    if (text.size() != 8) return {};
    CDuiColor color = 0;
    for (const wchar_t c : text) {
        const int digit = HexDigit(c);
        if (digit < 0) return {};
        color = color << 4 | static_cast<CDuiColor>(digit);
    }
    return color;
}

std::optional<Alignment> ParseAlignX(std::wstring_view text) { return ParseAlignment(text, L"left", L"right"); }
std::optional<Alignment> ParseAlignY(std::wstring_view text) { return ParseAlignment(text, L"top", L"bottom"); }

}  // namespace DuiLib
