#include "drawing/windows/font_coverage.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <vector>

namespace DuiLib {

namespace {

struct Range {
    unsigned first;
    unsigned last;
};

std::vector<Range> Ranges(HDC device) {
    std::vector<char> bytes(::GetFontUnicodeRanges(device, nullptr));
    if (bytes.empty()) return {};
    auto* const set = reinterpret_cast<GLYPHSET*>(bytes.data());
    ::GetFontUnicodeRanges(device, set);
    std::vector<Range> ranges;
    for (const WCRANGE* range = set->ranges; range != set->ranges + set->cRanges; ++range) {
        ranges.push_back({range->wcLow, range->wcLow + range->cGlyphs - 1u});
    }
    return ranges;
}

std::vector<Range> RangesOf(const std::wstring& family) {
    const HDC device = ::CreateCompatibleDC(nullptr);
    const HFONT font = ::CreateFontW(-16, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                     CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, family.c_str());
    const HGDIOBJ before = ::SelectObject(device, font);
    std::vector<Range> ranges = Ranges(device);
    ::SelectObject(device, before);
    ::DeleteObject(font);
    ::DeleteDC(device);
    return ranges;
}

// What fonts need not have: controls, surrogates, and marks that tell the order of writing or choose a form.
bool IsLetter(wchar_t c) {
    return c > L' ' && (c & 0xF800) != 0xD800 && !(c >= 0x200B && c <= 0x200F) && !(c >= 0x2028 && c <= 0x202E) &&
           !(c >= 0x2060 && c <= 0x206F) && !(c >= 0xFE00 && c <= 0xFE0F) && c != 0xFEFF;
}

}  // namespace

bool HasLetters(const std::wstring& family, std::wstring_view text) {
    static std::map<std::wstring, std::vector<Range>> known;
    const auto found = known.find(family);
    const std::vector<Range>& ranges =
        found != known.end() ? found->second : known.emplace(family, RangesOf(family)).first->second;
    return std::all_of(text.begin(), text.end(), [&ranges](wchar_t c) {
        return !IsLetter(c) || std::any_of(ranges.begin(), ranges.end(),
                                           [c](const Range& range) { return c >= range.first && c <= range.last; });
    });
}

}  // namespace DuiLib
