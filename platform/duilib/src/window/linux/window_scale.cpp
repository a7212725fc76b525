#include "window/linux/window_scale.h"

#include <SDL.h>
#include <SDL_syswm.h>

#include <cstdlib>
#include <initializer_list>

#include "window/native_window.h"

#if defined(SDL_VIDEO_DRIVER_X11)
#include <X11/Xlib.h>
#endif

namespace DuiLib {

namespace {

// What an X server knows [dots an inch]; 0 for what it does not, and without one.
struct XDensities {
    double desktop = 0;  // set by the desktop for all programs
    double screen = 0;   // of all monitors together
};

XDensities DensitiesOfX(SDL_Window* window) {
    XDensities densities;
#if defined(SDL_VIDEO_DRIVER_X11)
    constexpr double kMillimetresAnInch = 25.4;
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return densities;
    Display* const display = info.info.x11.display;
    const char* const desktop = XGetDefault(display, "Xft", "dpi");
    if (desktop) densities.desktop = std::strtod(desktop, nullptr);
    const int millimetres = DisplayHeightMM(display, DefaultScreen(display));
    const int pixels = DisplayHeight(display, DefaultScreen(display));
    if (millimetres > 0) densities.screen = pixels * kMillimetresAnInch / millimetres;
#endif
    return densities;
}

// 0 when the system does not know the monitor's size.
double DensityOfMonitor(SDL_Window* window) {
    float density = 0;
    const int display = SDL_GetWindowDisplayIndex(window);
    return display >= 0 && SDL_GetDisplayDPI(display, &density, nullptr, nullptr) == 0 ? density : 0;
}

}  // namespace

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
    const XDensities x = DensitiesOfX(window);
    for (const double density : {x.desktop, DensityOfMonitor(window), x.screen}) {
        if (density > 0) return ScaleForDensity(density);
    }
    return 100;
}

}  // namespace DuiLib
