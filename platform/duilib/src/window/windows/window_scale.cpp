#include "window/windows/window_scale.h"

#include "window/native_window.h"

namespace DuiLib {

namespace {

// A function that not every version of the system has; null where it is missing.
template <class Function>
Function* Find(const wchar_t* library, const char* name) {
    const HMODULE module = ::LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return module ? reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(module, name))) : nullptr;
}

constexpr int kPerMonitor = 2;  // of SetProcessDpiAwareness
constexpr int kEffective = 0;   // of GetDpiForMonitor

unsigned DensityOf(HWND window) {
    static auto* const ofWindow = Find<UINT WINAPI(HWND)>(L"user32.dll", "GetDpiForWindow");
    if (ofWindow) return ofWindow(window);
    static auto* const ofMonitor = Find<HRESULT WINAPI(HMONITOR, int, UINT*, UINT*)>(L"shcore.dll", "GetDpiForMonitor");
    UINT x = 0;
    UINT y = 0;
    const HMONITOR monitor = ::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST);
    if (ofMonitor && SUCCEEDED(ofMonitor(monitor, kEffective, &x, &y))) return y;
    const HDC screen = ::GetDC(nullptr);
    const int density = ::GetDeviceCaps(screen, LOGPIXELSY);
    ::ReleaseDC(nullptr, screen);
    return static_cast<unsigned>(density);
}

}  // namespace

void BeAwareOfScales() {
    const HANDLE perMonitorV2 = reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-4));
    auto* const context = Find<BOOL WINAPI(HANDLE)>(L"user32.dll", "SetProcessDpiAwarenessContext");
    if (context && context(perMonitorV2)) return;
    auto* const awareness = Find<HRESULT WINAPI(int)>(L"shcore.dll", "SetProcessDpiAwareness");
    if (awareness && SUCCEEDED(awareness(kPerMonitor))) return;
    ::SetProcessDPIAware();
}

unsigned DisplayScale(HWND window) { return ScaleForDensity(DensityOf(window)); }

RECT OuterOf(HWND window, RECT content) {
    const auto style = static_cast<DWORD>(::GetWindowLongW(window, GWL_STYLE));
    static auto* const forDpi =
        Find<BOOL WINAPI(RECT*, DWORD, BOOL, DWORD, UINT)>(L"user32.dll", "AdjustWindowRectExForDpi");
    if (forDpi) {
        forDpi(&content, style, FALSE, 0, DensityOf(window));
    } else {
        ::AdjustWindowRectEx(&content, style, FALSE, 0);
    }
    return content;
}

}  // namespace DuiLib
