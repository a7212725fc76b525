#pragma once

#include <string>
#include <vector>

#include "drawing/text_measurer.h"
#include "drawing/windows/gdiplus_library.h"

namespace DuiLib {

// Texts set by GDI+.
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
