#pragma once

#include <string_view>

#include "duilib/export.h"
#include "duilib/geometry.h"
#include "duilib/resource_manager.h"

namespace DuiLib {

class PaintDC;

// Text flags.
inline constexpr unsigned kTextLeft = 0x0;
inline constexpr unsigned kTextCenter = 0x1;
inline constexpr unsigned kTextRight = 0x2;
inline constexpr unsigned kTextVCenter = 0x4;
inline constexpr unsigned kTextBottom = 0x8;
inline constexpr unsigned kTextWordBreak = 0x10;
inline constexpr unsigned kTextSingleLine = 0x20;
inline constexpr unsigned kTextCalcRect = 0x400;  // measure only, nothing is painted
inline constexpr unsigned kTextEndEllipsis = 0x8000;

// What measures text. One is in use at a time, by default the system's (Pango or GDI+).
class DUILIB_API TextMeasurer {
public:
    virtual ~TextMeasurer() = default;
    // [device px] The extent of the text, broken at line feeds and, with `wrap`, at `maxWidth` (greater than 0). A last
    // empty line does not count; the empty text has height 0. `scale` is the percentage that font sizes are multiplied
    // by.
    virtual CDuiSize Measure(std::wstring_view text, const FontDescription& font, unsigned scale, int maxWidth,
                             bool wrap) = 0;
};

class DUILIB_API CRenderEngine {
public:
    // With kTextCalcRect: shrinks or grows `rect`, at its left top corner, to what the text needs, wrapped at its width
    // unless kTextSingleLine. The font is an index into CResourceManager's. Without it the text is painted, at
    // times other than while the window is being painted nowhere.
    static void DrawText(PaintDC* dc, CPaintManagerUI* manager, CDuiRect& rect, std::wstring_view text, CDuiColor color,
                         int font, unsigned style);

    // Replaces the measurer, which stays the caller's; null restores the system's. Lays every window out again.
    static void SetTextMeasurer(TextMeasurer* measurer);
    static TextMeasurer& GetTextMeasurer();
};

}  // namespace DuiLib
