#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>

#include "measure_cache.h"
#include "system_text_measurer.h"
#include "text_utf8.h"

namespace DuiLib {

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
// Gives Fontconfig's configuration back when nothing here uses it any more: its patterns hold their memory by offsets,
// which leak checkers cannot follow.
struct FontconfigEnd {
    ~FontconfigEnd() { FcConfigSetCurrent(nullptr); }
};
struct FreeDescription {
    void operator()(PangoFontDescription* description) const { pango_font_description_free(description); }
};

// Pango with fonts of Fontconfig, without a display.
class PangoTextMeasurer final : public TextMeasurer {
public:
    PangoTextMeasurer()
        : m_fonts(pango_cairo_font_map_new()),
          m_context(pango_font_map_create_context(m_fonts.get())),
          m_layout(pango_layout_new(m_context.get())) {
        pango_layout_set_wrap(m_layout.get(), PANGO_WRAP_WORD_CHAR);
    }

    CDuiSize Measure(std::wstring_view text, const FontDescription& font, unsigned scale, int maxWidth,
                     bool wrap) override {
        if (text.empty()) return {};
        if (text.back() == L'\n') text.remove_suffix(1);
        std::string utf8 = ToUtf8(text);
        std::ranges::replace(utf8, '\0', ' ');  // Pango's texts end at a zero
        SetFont(font, scale);
        pango_layout_set_width(m_layout.get(), wrap ? Units(maxWidth) : -1);
        pango_layout_set_text(m_layout.get(), utf8.data(), static_cast<int>(utf8.size()));
        PangoRectangle extent;
        pango_layout_get_extents(m_layout.get(), nullptr, &extent);
        return {PANGO_PIXELS_CEIL(extent.width), PANGO_PIXELS_CEIL(extent.height)};
    }

private:
    static int Units(int pixels) {
        return std::min(pixels, std::numeric_limits<int>::max() / PANGO_SCALE) * PANGO_SCALE;
    }

    void SetFont(const FontDescription& font, unsigned scale) {
        const std::unique_ptr<PangoFontDescription, FreeDescription> description(pango_font_description_new());
        pango_font_description_set_family(description.get(), font.family.c_str());
        pango_font_description_set_weight(description.get(), font.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
        pango_font_description_set_absolute_size(description.get(), font.size * (scale / 100.0) * PANGO_SCALE);
        pango_layout_set_font_description(m_layout.get(), description.get());
    }

    FontconfigEnd m_fontconfig;  // destroyed after the others
    std::unique_ptr<PangoFontMap, Unref> m_fonts;
    std::unique_ptr<PangoContext, Unref> m_context;
    std::unique_ptr<PangoLayout, Unref> m_layout;
};

}  // namespace

TextMeasurer& SystemTextMeasurer() {
    static PangoTextMeasurer pango;
    static MeasureCache cache(pango);
    return cache;
}

}  // namespace DuiLib
