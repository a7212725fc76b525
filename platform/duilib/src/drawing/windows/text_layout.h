#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "drawing/windows/gdiplus_session.h"
#include "duilib/resource_manager.h"

namespace DuiLib {

// Texts set by GDI+. What is measured and what is painted comes from here, so that both agree.
struct TextSetting {
    std::wstring_view text;
    const FontDescription& font;
    unsigned scale;         // [percent] that font sizes are multiplied by
    int width = -1;         // [device px] to break or cut at; -1: neither
    bool wrap = false;      // at the width, between words where possible
    bool ellipsis = false;  // "…" where a text that is not wrapped is cut
};

struct TextLine {
    std::wstring text;
    int width;  // [device px] rounded up
};

struct TextLines {
    std::vector<TextLine> lines;
    const Gdiplus::Font* font;  // kept until the process ends
    int lineHeight;             // [device px] rounded up
    bool rightToLeft;           // for texts that are of no direction themselves, such as percentages

    CDuiSize Size() const;
};

// The text in lines, a last line feed excluded. UI turn.
TextLines SetText(const TextSetting& setting);

// Draws one of the lines with its left top corner at a point.
void DrawLine(Gdiplus::Graphics& graphics, const TextLines& lines, const TextLine& line, double x, double y,
              CDuiColor color);

}  // namespace DuiLib
