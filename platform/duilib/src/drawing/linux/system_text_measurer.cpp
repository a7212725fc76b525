#include "drawing/system_text_measurer.h"

#include "drawing/linux/text_layout.h"
#include "drawing/measure_cache.h"

namespace DuiLib {

namespace {

class PangoTextMeasurer final : public TextMeasurer {
public:
    CDuiSize Measure(std::wstring_view text, const FontDescription& font, unsigned scale, int maxWidth,
                     bool wrap) override {
        if (text.empty()) return {};
        PangoLayout* const layout = SetTextOnce({text, font, scale, maxWidth, wrap});
        PangoRectangle extent;
        pango_layout_get_extents(layout, nullptr, &extent);
        return {PANGO_PIXELS_CEIL(extent.width), PANGO_PIXELS_CEIL(extent.height)};
    }
};

}  // namespace

TextMeasurer& SystemTextMeasurer() {
    static PangoTextMeasurer pango;
    static MeasureCache cache(pango);
    return cache;
}

}  // namespace DuiLib
