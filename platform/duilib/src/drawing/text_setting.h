#pragma once

#include "duilib/render_engine.h"

namespace DuiLib {

// A text as it is to be set by the system's text library: linux/ and windows/ lay it out in lines, once for measuring
// and painting, so that both agree.
struct TextSetting {
    std::wstring_view text;
    const FontDescription& font;
    unsigned scale;         // [percent] that font sizes are multiplied by
    int width = -1;         // [device px] to break or cut at; -1: neither
    bool wrap = false;      // at the width, between words where possible
    bool ellipsis = false;  // "…" where a text that is not wrapped is cut
};

// ... within a width [device px]. `style` is CRenderEngine's text flags, here and below.
TextSetting SettingOf(std::wstring_view text, const FontDescription& font, unsigned scale, int width, unsigned style);

// [device px] What the text takes, rounded up; a last line feed does not count. UI turn.
CDuiSize SizeOf(const TextSetting& setting);

// Where a line of a text starts, relative to the left edge of its area [device px], which is `space` wider.
double LineOffset(unsigned style, bool rightToLeft, double space);

// ... and its first line, relative to the top of an area that is `space` higher than all lines.
double TextTop(unsigned style, double space);

}  // namespace DuiLib
