#include "drawing/text_measurer.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "base/text.h"
#include "drawing/canvas.h"
#include "foundation/diagnostics.h"
#include "foundation/geometry_math.h"
#include "foundation/layout_basis.h"

namespace DuiLib {

TextSetting SettingOf(std::wstring_view text, const FontDescription& font, unsigned scale, int width, unsigned style) {
    const bool wrap = !(style & kTextSingleLine);
    const bool ellipsis = !wrap && (style & kTextEndEllipsis);
    return {text, font, scale, wrap || ellipsis ? width : -1, wrap, ellipsis};
}

double LineOffset(unsigned style, bool rightToLeft, double space) {
    if (style & kTextCenter) return std::floor(space / 2);
    const bool atEnd = (style & kTextRight) != 0;
    return atEnd != rightToLeft ? space : 0;
}

double TextTop(unsigned style, double space) {
    if (style & kTextVCenter) return std::floor(space / 2);
    return style & kTextBottom ? space : 0;
}

std::string CharactersToSet(std::wstring_view text) {
    if (text.ends_with(L'\n')) text.remove_suffix(1);
    std::string characters = base::Utf8FromWide(text);
    std::ranges::replace(characters, '\0', ' ');
    return characters;
}

CDuiSize MeasureCache::Measure(std::wstring_view text, const FontDescription& font, unsigned scale, int maxWidth,
                               bool wrap) {
    if (text.size() > kMaxTextLength) return m_measurer.Measure(text, font, scale, maxWidth, wrap);
    const Key key{text, font, scale, wrap ? maxWidth : 0};
    const std::size_t hash = HashOf(key);
    if (const auto known = Find(key, hash); known != m_entries.end()) {
        m_entries.splice(m_entries.begin(), m_entries, known);
        return known->size;
    }
    const CDuiSize size = m_measurer.Measure(text, font, scale, maxWidth, wrap);
    if (m_entries.size() >= kMaxEntries) DropOldest();
    m_entries.push_front({std::wstring(text), font, scale, key.maxWidth, hash, size});
    m_byHash.emplace(hash, m_entries.begin());
    return size;
}

std::size_t MeasureCache::HashOf(const Key& key) {
    std::size_t hash = std::hash<std::wstring_view>{}(key.text);
    const auto mix = [&hash](std::size_t value) { hash = hash * 0x9E3779B97F4A7C15u + value; };
    mix(static_cast<std::size_t>(key.maxWidth));
    mix(key.scale);
    mix(static_cast<std::size_t>(key.font.size));
    mix(key.font.bold);
    return hash;
}

MeasureCache::Entries::iterator MeasureCache::Find(const Key& key, std::size_t hash) {
    const auto [first, last] = m_byHash.equal_range(hash);
    for (auto at = first; at != last; ++at) {
        const Entry& entry = *at->second;
        if (entry.text == key.text && entry.maxWidth == key.maxWidth && entry.scale == key.scale &&
            entry.font == key.font) {
            return at->second;
        }
    }
    return m_entries.end();
}

void MeasureCache::DropOldest() {
    const auto oldest = std::prev(m_entries.end());
    const auto [first, last] = m_byHash.equal_range(oldest->hash);
    for (auto at = first; at != last; ++at) {
        if (at->second != oldest) continue;
        m_byHash.erase(at);
        break;
    }
    m_entries.erase(oldest);
}

namespace {

class TextSettingMeasurer final : public TextMeasurer {
public:
    CDuiSize Measure(std::wstring_view text, const FontDescription& font, unsigned scale, int maxWidth,
                     bool wrap) override {
        if (text.empty()) return {};
        return SizeOf({text, font, scale, maxWidth, wrap});
    }
};

}  // namespace

TextMeasurer& SystemTextMeasurer() {
    static TextSettingMeasurer measurer;
    static MeasureCache cache(measurer);
    return cache;
}

// ---- CRenderEngine

namespace {

TextMeasurer* replacement = nullptr;

}  // namespace

void CRenderEngine::DrawText(PaintDC* dc, CPaintManagerUI*, CDuiRect& rect, std::wstring_view text, CDuiColor color,
                             int font, unsigned style) {
    AssertUiTurn();
    const CResourceManager& resources = *CResourceManager::GetInstance();
    if (!(style & kTextCalcRect)) {
        Canvas* const canvas = dc ? dc->GetCanvas() : nullptr;
        if (canvas) canvas->Text(rect, text, resources.GetFont(font), resources.GetScale(), color, style);
        return;
    }
    const bool wrap = !(style & kTextSingleLine);
    const CDuiSize size =
        GetTextMeasurer().Measure(text, resources.GetFont(font), resources.GetScale(), std::max(1, rect.Width()), wrap);
    rect.right = ClampExtent(std::int64_t{rect.left} + size.cx);
    rect.bottom = ClampExtent(std::int64_t{rect.top} + size.cy);
}

void CRenderEngine::SetTextMeasurer(TextMeasurer* measurer) {
    AssertUiTurn();
    if (replacement == measurer) return;
    replacement = measurer;
    TellLayoutBasisChanged();
}

TextMeasurer& CRenderEngine::GetTextMeasurer() {
    AssertUiTurn();
    return replacement ? *replacement : SystemTextMeasurer();
}

}  // namespace DuiLib
