#pragma once

#include <pango/pangocairo.h>

#include <memory>
#include <string>
#include <string_view>

#include "duilib/resource_manager.h"

namespace DuiLib {

// Texts set by Pango with fonts of Fontconfig, without a display. What is measured and what is painted comes from here,
// so that both agree; the fonts' rendering is pinned, whatever the desktop prefers, so that pages look the same
// everywhere.
struct TextSetting {
    std::wstring_view text;
    const FontDescription& font;
    unsigned scale;         // [percent] that font sizes are multiplied by
    int width = -1;         // [device px] to break or cut at; -1: neither
    bool wrap = false;      // at the width, between words where possible
    bool ellipsis = false;  // "…" where a text that is not wrapped is cut
};

// The text laid out, a last line feed excluded; kept for the next call of the same setting, and valid until then. UI
// turn.
PangoLayout* SetText(const TextSetting& setting);

// The same without keeping it: a layout that the next call of either function overwrites.
PangoLayout* SetTextOnce(const TextSetting& setting);

}  // namespace DuiLib
