#pragma once

struct SDL_Window;

namespace DuiLib {

// [percent] The scale of the display that the window is on: what the desktop says, else what the display's size makes
// of it, in steps of 25 between 100 and 300.
unsigned DisplayScale(SDL_Window* window);

// Device pixels for each of the units in which the desktop gives the pointer and takes sizes: 1, or more on desktops
// that scale windows themselves.
double PixelsPerUnit(SDL_Window* window);

}  // namespace DuiLib
