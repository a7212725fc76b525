#include "drawing/system_text_measurer.h"

#include "drawing/measure_cache.h"
#include "drawing/windows/text_layout.h"

namespace DuiLib {

namespace {

class GdiplusTextMeasurer final : public TextMeasurer {
public:
    CDuiSize Measure(std::wstring_view text, const FontDescription& font, unsigned scale, int maxWidth,
                     bool wrap) override {
        if (text.empty()) return {};
        return SetText({text, font, scale, maxWidth, wrap}).Size();
    }
};

}  // namespace

TextMeasurer& SystemTextMeasurer() {
    static GdiplusTextMeasurer gdiplus;
    static MeasureCache cache(gdiplus);
    return cache;
}

}  // namespace DuiLib
