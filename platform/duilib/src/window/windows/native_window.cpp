#include "window/native_window.h"

#include <windows.h>
#include <windowsx.h>

#include <algorithm>
#include <array>
#include <exception>
#include <stdexcept>
#include <utility>

#include "base/reason.h"
#include "base/text.h"
#include "duilib/resource_manager.h"
#include "duilib/window.h"
#include "kernel/ui_turn.h"
#include "window/windows/window_scale.h"

namespace DuiLib {

namespace {

constexpr const wchar_t* kClassName = L"DuiLibWindow";
constexpr UINT kWakeUp = WM_APP;
constexpr CDuiPoint kNowhere{-1, -1};

std::string NoWindow() { return kNoWindow + (": " + base::LastReason()); }

bool IsDown(int key) { return ::GetKeyState(key) < 0; }

constexpr std::array kKeys = {
    std::pair<WPARAM, DuiKey>{VK_TAB, DuiKey::kTab},      std::pair<WPARAM, DuiKey>{VK_RETURN, DuiKey::kEnter},
    std::pair<WPARAM, DuiKey>{VK_SPACE, DuiKey::kSpace},  std::pair<WPARAM, DuiKey>{VK_ESCAPE, DuiKey::kEscape},
    std::pair<WPARAM, DuiKey>{VK_UP, DuiKey::kUp},        std::pair<WPARAM, DuiKey>{VK_DOWN, DuiKey::kDown},
    std::pair<WPARAM, DuiKey>{VK_PRIOR, DuiKey::kPageUp}, std::pair<WPARAM, DuiKey>{VK_NEXT, DuiKey::kPageDown},
    std::pair<WPARAM, DuiKey>{VK_HOME, DuiKey::kHome},    std::pair<WPARAM, DuiKey>{VK_END, DuiKey::kEnd},
};

std::optional<DuiKey> KeyOf(WPARAM key, LPARAM how) {
    constexpr LPARAM kWasDown = 1 << 30;
    const bool command = IsDown(VK_CONTROL) || IsDown(VK_MENU) || IsDown(VK_LWIN) || IsDown(VK_RWIN);
    return MeaningOf(FindKey<WPARAM>(kKeys, key), {(how & kWasDown) != 0, IsDown(VK_SHIFT), command});
}

struct DestroyTheWindow {
    void operator()(HWND window) const {
        ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        ::DestroyWindow(window);
    }
};
using Window = std::unique_ptr<std::remove_pointer_t<HWND>, DestroyTheWindow>;

// The module that this code is in: the library, not the program.
HINSTANCE ThisModule() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         kClassName, &module);
    return module;
}

void RegisterClassOnce(WNDPROC handle) {
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.lpfnWndProc = handle;
    description.hInstance = ThisModule();
    description.hCursor = ::LoadCursorW(nullptr, IDC_ARROW);
    description.hIcon = ::LoadIconW(nullptr, IDI_APPLICATION);
    description.lpszClassName = kClassName;
    if (!::RegisterClassExW(&description) && ::GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
        throw std::runtime_error(NoWindow());
    }
}

RECT WorkArea(HWND window) {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    ::GetMonitorInfoW(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

CDuiSize SizeOf(const RECT& area) {
    return {static_cast<int>(area.right - area.left), static_cast<int>(area.bottom - area.top)};
}

DWORD Milliseconds(std::optional<std::chrono::milliseconds> time) {
    if (!time) return INFINITE;
    return static_cast<DWORD>(std::clamp<std::chrono::milliseconds::rep>(time->count(), 0, INFINITE - 1));
}

CDuiPoint PointOf(LPARAM place) { return {GET_X_LPARAM(place), GET_Y_LPARAM(place)}; }

class SystemWindow final : public NativeWindow {
public:
    SystemWindow(CPaintManagerUI& shown, const WindowOptions& wanted) : NativeWindow(shown, wanted) {
        m_window.reset(::CreateWindowExW(0, kClassName, base::WideFromUtf8(options.title).c_str(), WS_OVERLAPPEDWINDOW,
                                         CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr,
                                         ThisModule(), this));
        if (!m_window) throw std::runtime_error(NoWindow());
        kernel::UiTurn turn;
        FollowDisplay();
        TakeFirstPlace();
        FollowSize();
        manager.InvalidateAll();
        ::ShowWindow(m_handle, SW_SHOWNORMAL);
        RethrowFailure();
    }

    void WaitAndHandle(std::optional<std::chrono::milliseconds> limit) override {
        ::MsgWaitForMultipleObjectsEx(0, nullptr, Milliseconds(WaitTime(limit)), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) TakeTurnAndAskToClose();
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
        RethrowFailure();
    }

    void WakeUp() override { ::PostMessageW(m_handle, kWakeUp, 0, 0); }
    void SetTitle(const std::string& title) override { ::SetWindowTextW(m_handle, base::WideFromUtf8(title).c_str()); }

    CDuiPoint Origin() const override {
        POINT origin{};
        ::ClientToScreen(m_handle, &origin);
        return {static_cast<int>(origin.x), static_cast<int>(origin.y)};
    }

    // The turn is taken for each message: the system's own handling may keep this thread, as while a window is moved.
    static LRESULT CALLBACK Receive(HWND handle, UINT message, WPARAM wide, LPARAM low) {
        if (message == WM_NCCREATE) {
            auto* const made = static_cast<SystemWindow*>(reinterpret_cast<CREATESTRUCTW*>(low)->lpCreateParams);
            made->m_handle = handle;
            ::SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
        }
        if (auto* const window = reinterpret_cast<SystemWindow*>(::GetWindowLongPtrW(handle, GWLP_USERDATA))) {
            kernel::UiTurn turn;
            try {
                if (const auto result = window->Handle(message, wide, low)) return *result;
            } catch (...) {
                window->m_failure = std::current_exception();
                return 0;
            }
        }
        return ::DefWindowProcW(handle, message, wide, low);
    }

private:
    // ---- Size and scale
    void FollowDisplay() { FollowScale(DisplayScale(m_handle)); }

    // The outer size for a content [design px], no larger than what the desktop's bars leave free.
    CDuiSize OuterSize(CDuiSize design) const {
        const CDuiSize content = CResourceManager::GetInstance()->Scale(design);
        const CDuiSize outer = SizeOf(OuterOf(m_handle, {0, 0, content.cx, content.cy}));
        const CDuiSize room = SizeOf(WorkArea(m_handle));
        return {std::min(outer.cx, room.cx), std::min(outer.cy, room.cy)};
    }

    void TakeFirstPlace() {
        const CDuiSize size = OuterSize(options.size);
        const RECT room = WorkArea(m_handle);
        const CDuiSize free{SizeOf(room).cx - size.cx, SizeOf(room).cy - size.cy};
        ::SetWindowPos(m_handle, nullptr, static_cast<int>(room.left) + free.cx / 2,
                       static_cast<int>(room.top) + free.cy / 2, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
    }

    void FollowSize() {
        if (::IsIconic(m_handle)) return;
        RECT content{};
        ::GetClientRect(m_handle, &content);
        manager.SetClientSize(SizeOf(content));
    }

    void MoveToOtherScale(const RECT& suggested) {
        FollowDisplay();
        const CDuiSize size = SizeOf(suggested);
        ::SetWindowPos(m_handle, nullptr, static_cast<int>(suggested.left), static_cast<int>(suggested.top), size.cx,
                       size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
        FollowSize();
        manager.InvalidateAll();
    }

    // ---- Painting
    bool Show(const std::vector<CDuiRect>& areas) override {
        const HDC screen = ::GetDC(m_handle);
        for (const CDuiRect& area : areas) ShowOn(screen, area);
        ::ReleaseDC(m_handle, screen);
        return true;
    }

    // What the system wants to see again. Where it keeps this thread, while the window is being resized, this is what
    // paints.
    void PaintExposed() {
        PAINTSTRUCT exposed;
        const HDC screen = ::BeginPaint(m_handle, &exposed);
        if (::IsWindowVisible(m_handle)) {
            Paint();
            const RECT& area = exposed.rcPaint;
            ShowOn(screen, {static_cast<int>(area.left), static_cast<int>(area.top), static_cast<int>(area.right),
                            static_cast<int>(area.bottom)});
        }
        ::EndPaint(m_handle, &exposed);
    }

    void ShowOn(HDC screen, const CDuiRect& area) {
        const CDuiSize size = surface.Size();
        BITMAPINFO rows{};
        rows.bmiHeader.biSize = sizeof rows.bmiHeader;
        rows.bmiHeader.biWidth = size.cx;
        rows.bmiHeader.biHeight = -size.cy;  // from the top
        rows.bmiHeader.biPlanes = 1;
        rows.bmiHeader.biBitCount = 32;
        ::IntersectClipRect(screen, area.left, area.top, area.right, area.bottom);
        ::SetDIBitsToDevice(screen, 0, 0, static_cast<DWORD>(size.cx), static_cast<DWORD>(size.cy), 0, 0, 0,
                            static_cast<UINT>(size.cy), surface.Pixels(), &rows, DIB_RGB_COLORS);
        ::SelectClipRgn(screen, nullptr);
    }

    // ---- Input
    // The system forgets to tell of the leaving once it has told.
    void AwaitLeaving() {
        TRACKMOUSEEVENT leaving{};
        leaving.cbSize = sizeof leaving;
        leaving.dwFlags = TME_LEAVE;
        leaving.hwndTrack = m_handle;
        m_inside = ::TrackMouseEvent(&leaving) != FALSE;
    }

    void MovePointer(CDuiPoint point) {
        if (!m_inside) AwaitLeaving();
        manager.MouseMove(point);
    }

    void Press(CDuiPoint point) {
        m_pressed = true;
        ::SetCapture(m_handle);
        manager.ButtonDown(point);
    }

    void Release(CDuiPoint point) {
        m_pressed = false;
        ::ReleaseCapture();
        manager.ButtonUp(point);
        AwaitLeaving();  // it may be elsewhere already
    }

    // Another window took the pointer: what is pressed is let go without a click.
    void LosePointer() {
        if (std::exchange(m_pressed, false)) manager.ButtonUp(kNowhere);
    }

    void TurnWheel(CDuiPoint desktop, short turned) {
        POINT point{desktop.x, desktop.y};
        ::ScreenToClient(m_handle, &point);
        manager.MouseWheel({static_cast<int>(point.x), static_cast<int>(point.y)},
                           -static_cast<double>(turned) / WHEEL_DELTA);
    }

    void TakeTurnAndAskToClose() {
        kernel::UiTurn turn;
        AskToClose();
    }

    // ---- Messages. Nothing: the system handles it in its own way.
    std::optional<LRESULT> Handle(UINT message, WPARAM wide, LPARAM low) {
        switch (message) {
            case WM_SIZE:
                FollowSize();
                return 0;
            case WM_DPICHANGED:
                MoveToOtherScale(*reinterpret_cast<const RECT*>(low));
                return 0;
            case WM_GETMINMAXINFO: {
                const CDuiSize least = OuterSize(options.smallest);
                reinterpret_cast<MINMAXINFO*>(low)->ptMinTrackSize = {least.cx, least.cy};
                return 0;
            }
            case WM_PAINT:
                PaintExposed();
                return 0;
            case WM_ERASEBKGND:
                return 1;
            case kWakeUp:
                Paint();
                return 0;
            case WM_CLOSE:
                AskToClose();
                return 0;
            default:
                return HandleInput(message, wide, low);
        }
    }

    std::optional<LRESULT> HandleInput(UINT message, WPARAM wide, LPARAM low) {
        switch (message) {
            case WM_MOUSEMOVE:
                MovePointer(PointOf(low));
                return 0;
            case WM_MOUSELEAVE:
                m_inside = false;
                manager.MouseLeave();
                return 0;
            case WM_LBUTTONDOWN:
                Press(PointOf(low));
                return 0;
            case WM_LBUTTONUP:
                Release(PointOf(low));
                return 0;
            case WM_CAPTURECHANGED:
                LosePointer();
                return 0;
            case WM_MOUSEWHEEL:
                TurnWheel(PointOf(low), GET_WHEEL_DELTA_WPARAM(wide));
                return 0;
            case WM_KEYDOWN: {
                const auto key = KeyOf(wide, low);
                if (!key) return {};
                manager.KeyDown(*key);
                return 0;
            }
            default:
                return {};
        }
    }

    void RethrowFailure() {
        if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
    }

    HWND m_handle = nullptr;  // also while the window is being made
    bool m_inside = false;    // the pointer, and its leaving will be told
    bool m_pressed = false;
    std::exception_ptr m_failure;  // of handling a message; it cannot pass through the system
    Window m_window;               // destroyed before the others
};

}  // namespace

// Services have a desktop that nobody sees.
bool NativeWindow::HasDisplay(std::string& reason) {
    USEROBJECTFLAGS flags{};
    const HWINSTA station = ::GetProcessWindowStation();
    if (station && ::GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, nullptr) &&
        !(flags.dwFlags & WSF_VISIBLE)) {
        reason = kNoDisplay;
        return false;
    }
    BeAwareOfScales();
    const Window trial(
        ::CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 1, 1, nullptr, nullptr, ThisModule(), nullptr));
    if (!trial) reason = NoWindow();
    return trial != nullptr;
}

std::unique_ptr<NativeWindow> NativeWindow::Open(CPaintManagerUI& manager, const WindowOptions& options) {
    BeAwareOfScales();
    RegisterClassOnce(&SystemWindow::Receive);
    return std::make_unique<SystemWindow>(manager, options);
}

}  // namespace DuiLib
