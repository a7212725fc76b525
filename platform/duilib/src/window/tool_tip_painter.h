#pragma once

#include <string_view>

#include "drawing/canvas.h"

namespace DuiLib {

// [device px] Where the tip of a control goes in a window: below the control, or above where there is no room.
CDuiRect PlaceToolTip(std::wstring_view text, const CDuiRect& control, CDuiSize window);

void PaintToolTip(Canvas& canvas, std::wstring_view text, const CDuiRect& place);

}  // namespace DuiLib
