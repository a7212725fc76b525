#include "display_scale_sdl.h"

#include <SDL.h>
#include <SDL_syswm.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#if defined(SDL_VIDEO_DRIVER_X11)
#include <X11/Xlib.h>
#endif

namespace DuiLib {

namespace {

constexpr double kPlainDensity = 96;  // [dots an inch] at 100 percent

// What X desktops set for all programs [dots an inch]; 0 when they do not.
double DensityOfDesktop(SDL_Window* window) {
#if defined(SDL_VIDEO_DRIVER_X11)
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return 0;
    const char* const density = XGetDefault(info.info.x11.display, "Xft", "dpi");
    return density ? std::strtod(density, nullptr) : 0;
#else
    return 0;
#endif
}

}  // namespace

unsigned ScaleForDensity(double dotsPerInch) {
    const long steps = std::lround(dotsPerInch / kPlainDensity * 4);
    return static_cast<unsigned>(std::clamp(steps, 4l, 12l)) * 25;
}

double PixelsPerUnit(SDL_Window* window) {
    int units = 0;
    int pixels = 0;
    SDL_GetWindowSize(window, &units, nullptr);
    SDL_GetWindowSizeInPixels(window, &pixels, nullptr);
    return units > 0 && pixels > 0 ? static_cast<double>(pixels) / units : 1;
}

unsigned DisplayScale(SDL_Window* window) {
    const double ratio = PixelsPerUnit(window);
    if (ratio > 1) return ScaleForDensity(ratio * kPlainDensity);
    if (const double density = DensityOfDesktop(window); density > 0) return ScaleForDensity(density);
    float density = 0;
    const int display = SDL_GetWindowDisplayIndex(window);
    if (display < 0 || SDL_GetDisplayDPI(display, &density, nullptr, nullptr) != 0) return 100;
    return ScaleForDensity(density);
}

}  // namespace DuiLib
