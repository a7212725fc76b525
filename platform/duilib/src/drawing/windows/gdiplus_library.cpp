#include "drawing/windows/gdiplus_library.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "base/text.h"

namespace DuiLib {

namespace {

Gdiplus::Status Started() {
    ULONG_PTR token = 0;
    const Gdiplus::GdiplusStartupInput input;
    return Gdiplus::GdiplusStartup(&token, &input, nullptr);
}

}  // namespace

// Never shut down: that may not happen while libraries are unloaded, which is when a library's statics go.
void StartGdiplus() {
    static const Gdiplus::Status status = Started();
    if (status != Gdiplus::Ok) {
        throw std::runtime_error("GDI+ cannot be started: status " + std::to_string(static_cast<int>(status)));
    }
}

// ---- Fonts

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

namespace {

// Of the system, and of systems that have only free fonts: Chinese, Japanese, Korean, Arabic, and much of the rest.
constexpr const wchar_t* kFallbackFamilies[] = {
    L"Microsoft YaHei UI", L"Yu Gothic UI",     L"Malgun Gothic", L"Segoe UI",
    L"Noto Sans CJK SC",   L"Noto Sans Arabic", L"Arial"};

constexpr double kLargest = 4096;  // [device px] of letters; larger ones are out of every sight

using Family = std::unique_ptr<Gdiplus::FontFamily>;

const Gdiplus::FontCollection& Installed() {
    static const auto& fonts = *new Gdiplus::InstalledFontCollection;
    return fonts;
}

std::wstring NameOf(const Gdiplus::FontFamily& family) {
    wchar_t name[LF_FACESIZE] = {};
    family.GetFamilyName(name);
    return name;
}

// Every family there is. Wine finds some of them nowhere else, those of Arabic letters for example.
const std::map<std::wstring, const Gdiplus::FontFamily*>& InstalledByName() {
    static const auto& families = *new std::map<std::wstring, const Gdiplus::FontFamily*>([] {
        std::map<std::wstring, const Gdiplus::FontFamily*> byName;
        const INT count = Installed().GetFamilyCount();
        auto* const all = new Gdiplus::FontFamily[static_cast<std::size_t>(count)];
        INT found = 0;
        Installed().GetFamilies(count, all, &found);
        for (INT i = 0; i < found; ++i) byName.emplace(NameOf(all[i]), &all[i]);
        return byName;
    }());
    return families;
}

// The collection is given by name: Wine finds no more than half of its families without.
Family Named(const std::wstring& name) {
    auto family = std::make_unique<Gdiplus::FontFamily>(name.c_str(), &Installed());
    if (family->GetLastStatus() == Gdiplus::Ok) return family;
    const auto installed = InstalledByName().find(name);
    return installed != InstalledByName().end() ? Family(installed->second->Clone()) : nullptr;
}

Family FirstInstalled() {
    auto family = std::make_unique<Gdiplus::FontFamily>();
    INT found = 0;
    Installed().GetFamilies(1, family.get(), &found);
    if (found == 0) throw std::runtime_error("no font is installed");
    return family;
}

// What the system writes its messages in.
std::wstring SystemFamily() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (!::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) return L"Segoe UI";
    return metrics.lfMessageFont.lfFaceName;
}

Family FamilyFor(const std::string& wanted) {
    for (const std::wstring& name : {base::WideFromUtf8(wanted), SystemFamily(), std::wstring(L"Arial")}) {
        if (Family family = Named(name)) return family;
    }
    return FirstInstalled();
}

const std::vector<std::wstring>& InstalledFallbacks() {
    static const auto& installed = *new std::vector<std::wstring>([] {
        std::vector<std::wstring> names;
        std::copy_if(std::begin(kFallbackFamilies), std::end(kFallbackFamilies), std::back_inserter(names),
                     [](const std::wstring& name) { return Named(name) != nullptr; });
        return names;
    }());
    return installed;
}

// The name of the family that sets the text.
std::wstring ChooseFamily(const std::string& wanted, std::wstring_view text) {
    static std::map<std::string, std::wstring> chosen;
    std::wstring& first = chosen[wanted];
    if (first.empty()) first = NameOf(*FamilyFor(wanted));
    if (HasLetters(first, text)) return first;
    const std::vector<std::wstring>& others = InstalledFallbacks();
    const auto other =
        std::find_if(others.begin(), others.end(), [text](const std::wstring& name) { return HasLetters(name, text); });
    return other != others.end() ? *other : first;
}

SystemFont Made(const std::wstring& name, bool bold, double size) {
    const Family family = FamilyFor(base::Utf8FromWide(name));
    const INT style = bold ? Gdiplus::FontStyleBold : Gdiplus::FontStyleRegular;
    const auto* const font =
        new Gdiplus::Font(family.get(), static_cast<Gdiplus::REAL>(size), style, Gdiplus::UnitPixel);
    const double em = std::max<double>(1, family->GetEmHeight(style));
    return {font, static_cast<int>(std::ceil(size * family->GetLineSpacing(style) / em))};
}

}  // namespace

const SystemFont& FindFont(const FontDescription& font, unsigned scale, std::wstring_view text) {
    using Key = std::tuple<std::wstring, double, bool>;
    // Never destroyed: GDI+ may have gone before a library's statics do.
    static auto& fonts = *new std::map<Key, SystemFont>;
    StartGdiplus();
    const double size = std::clamp(font.size * (scale / 100.0), 1.0, kLargest);
    const Key key{ChooseFamily(font.family, text), size, font.bold};
    const auto found = fonts.find(key);
    if (found != fonts.end()) return found->second;
    return fonts.emplace(key, Made(std::get<0>(key), font.bold, size)).first->second;
}

}  // namespace DuiLib
