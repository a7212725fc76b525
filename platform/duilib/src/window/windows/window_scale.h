#pragma once

#include <windows.h>

#include <optional>

namespace DuiLib {

// Windows of this process are made for the display they are on, and not enlarged by the system; as far as the system's
// version can. Call before the first window.
void BeAwareOfScales();

// [percent] The scale of the display that the window is on, in steps of 25 between 100 and 300.
unsigned DisplayScale(HWND window);

// The outer rectangle of a window of a content, on the display that the window is on.
RECT OuterOf(HWND window, RECT content);

}  // namespace DuiLib
