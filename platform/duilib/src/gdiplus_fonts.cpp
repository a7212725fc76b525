#include "gdiplus_fonts.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>

#include "text_utf8.h"

namespace DuiLib {

namespace {

constexpr double kLargest = 4096;  // [device px] of letters; larger ones are out of every sight

using Family = std::unique_ptr<Gdiplus::FontFamily>;

const Gdiplus::FontCollection& Installed() {
    static const auto& fonts = *new Gdiplus::InstalledFontCollection;
    return fonts;
}

// The collection is given by name: Wine finds no more than half of its families without.
Family Named(const std::wstring& name) {
    auto family = std::make_unique<Gdiplus::FontFamily>(name.c_str(), &Installed());
    return family->GetLastStatus() == Gdiplus::Ok ? std::move(family) : nullptr;
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
    for (const std::wstring& name : {FromUtf8(wanted), SystemFamily(), std::wstring(L"Arial")}) {
        if (Family family = Named(name)) return family;
    }
    return FirstInstalled();
}

SystemFont Made(const FontDescription& wanted, double size) {
    StartGdiplus();
    const Family family = FamilyFor(wanted.family);
    const INT style = wanted.bold ? Gdiplus::FontStyleBold : Gdiplus::FontStyleRegular;
    const auto* const font =
        new Gdiplus::Font(family.get(), static_cast<Gdiplus::REAL>(size), style, Gdiplus::UnitPixel);
    const double em = std::max<double>(1, family->GetEmHeight(style));
    return {font, static_cast<int>(std::ceil(size * family->GetLineSpacing(style) / em))};
}

}  // namespace

const SystemFont& FindFont(const FontDescription& font, unsigned scale) {
    using Key = std::tuple<std::string, double, bool>;
    // Never destroyed: GDI+ may have gone before a library's statics do.
    static auto& fonts = *new std::map<Key, SystemFont>;
    const double size = std::clamp(font.size * (scale / 100.0), 1.0, kLargest);
    const Key key{font.family, size, font.bold};
    const auto found = fonts.find(key);
    return found != fonts.end() ? found->second : fonts.emplace(key, Made(font, size)).first->second;
}

}  // namespace DuiLib
