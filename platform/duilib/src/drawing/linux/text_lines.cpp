#include "drawing/linux/text_lines.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <unordered_map>

#include "base/text.h"
#include "duilib/ui_culture.h"

namespace DuiLib {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using Layout = std::unique_ptr<PangoLayout, Unref>;

// Gives Fontconfig's configuration back when nothing here uses it any more: its patterns hold their memory by offsets,
// which leak checkers cannot follow.
struct FontconfigEnd {
    ~FontconfigEnd() { FcConfigSetCurrent(nullptr); }
};
struct FreeDescription {
    void operator()(PangoFontDescription* description) const { pango_font_description_free(description); }
};

constexpr std::size_t kMaxKept = 512;  // layouts; more than a window shows

int Units(int pixels) {
    if (pixels < 0) return -1;
    return std::min(pixels, std::numeric_limits<int>::max() / PANGO_SCALE) * PANGO_SCALE;
}

void PinRendering(PangoContext* context) {
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(context, options);
    cairo_font_options_destroy(options);
}

class PangoText {
public:
    PangoText() : m_fonts(pango_cairo_font_map_new()), m_context(pango_font_map_create_context(m_fonts.get())) {
        PinRendering(m_context.get());
        m_once = NewLayout();
    }

    PangoLayout* Kept(const TextSetting& setting) {
        FollowReading();
        const std::string key = KeyOf(setting);
        const auto found = m_kept.find(key);
        if (found != m_kept.end()) return found->second.get();
        if (m_kept.size() >= kMaxKept) m_kept.clear();
        Layout layout = NewLayout();
        Fill(layout.get(), setting);
        return m_kept.emplace(key, std::move(layout)).first->second.get();
    }

    // Without keeping it: valid until the next call.
    PangoLayout* Once(const TextSetting& setting) {
        FollowReading();
        Fill(m_once.get(), setting);
        return m_once.get();
    }

private:
    // For texts that are of no direction themselves, such as percentages. Layouts notice a change.
    void FollowReading() {
        const bool rightToLeft = UICulture::GetInstance()->IsRightToLeft();
        const PangoDirection direction = rightToLeft ? PANGO_DIRECTION_RTL : PANGO_DIRECTION_LTR;
        if (pango_context_get_base_dir(m_context.get()) != direction) {
            pango_context_set_base_dir(m_context.get(), direction);
        }
    }

    Layout NewLayout() {
        Layout layout(pango_layout_new(m_context.get()));
        pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
        return layout;
    }

    static std::string KeyOf(const TextSetting& setting) {
        std::string key = base::Utf8FromWide(setting.text);
        key += '\0' + setting.font.family + '\0';
        for (const int number : {setting.font.size, setting.font.bold ? 1 : 0, static_cast<int>(setting.scale),
                                 setting.width, setting.wrap ? 1 : 0, setting.ellipsis ? 1 : 0}) {
            key += std::to_string(number) + ',';
        }
        return key;
    }

    static void Fill(PangoLayout* layout, const TextSetting& setting) {
        const std::string utf8 = CharactersToSet(setting.text);
        SetFont(layout, setting.font, setting.scale);
        pango_layout_set_width(layout, setting.wrap || setting.ellipsis ? Units(setting.width) : -1);
        pango_layout_set_ellipsize(layout, setting.ellipsis ? PANGO_ELLIPSIZE_END : PANGO_ELLIPSIZE_NONE);
        pango_layout_set_text(layout, utf8.data(), static_cast<int>(utf8.size()));
    }

    static void SetFont(PangoLayout* layout, const FontDescription& font, unsigned scale) {
        const std::unique_ptr<PangoFontDescription, FreeDescription> description(pango_font_description_new());
        pango_font_description_set_family(description.get(), font.family.c_str());
        pango_font_description_set_weight(description.get(), font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_absolute_size(description.get(), font.size * (scale / 100.0) * PANGO_SCALE);
        pango_layout_set_font_description(layout, description.get());
    }

    FontconfigEnd m_fontconfig;  // destroyed after the others
    std::unique_ptr<PangoFontMap, Unref> m_fonts;
    std::unique_ptr<PangoContext, Unref> m_context;
    Layout m_once;
    std::unordered_map<std::string, Layout> m_kept;
};

PangoText& Texts() {
    static PangoText texts;
    return texts;
}

}  // namespace

PangoLayout* SetText(const TextSetting& setting) { return Texts().Kept(setting); }

CDuiSize SizeOf(const TextSetting& setting) {
    PangoRectangle extent;
    pango_layout_get_extents(Texts().Once(setting), nullptr, &extent);
    return {PANGO_PIXELS_CEIL(extent.width), PANGO_PIXELS_CEIL(extent.height)};
}

}  // namespace DuiLib
