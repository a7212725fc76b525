#pragma once

#include <pango/pangocairo.h>

#include "drawing/text_measurer.h"

namespace DuiLib {

// Texts set by Pango with fonts of Fontconfig, without a display. The fonts' rendering is pinned, whatever the desktop
// prefers, so that pages look the same everywhere.

// The text laid out, a last line feed excluded; kept for the next call of the same setting, and valid until then. UI
// turn.
PangoLayout* SetText(const TextSetting& setting);

}  // namespace DuiLib
