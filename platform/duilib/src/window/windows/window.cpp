#include "duilib/window.h"

#include <windows.h>
#include <windowsx.h>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

#include "duilib/paint_manager.h"
#include "duilib/paint_surface.h"
#include "duilib/resource_manager.h"
#include "foundation/text_utf8.h"
#include "kernel/ui_turn.h"
#include "window/windows/window_scale.h"

namespace DuiLib {

namespace {

constexpr const char* kNoWindow = "no window can be opened";
constexpr const wchar_t* kClassName = L"DuiLibWindow";
constexpr UINT kWakeUp = WM_APP;
constexpr CDuiPoint kNowhere{-1, -1};

std::string Reason(const char* what) { return std::string(what) + ": error " + std::to_string(::GetLastError()); }

bool IsDown(int key) { return ::GetKeyState(key) < 0; }

// A key that is held down moves and scrolls again and again, but presses once; with Ctrl, Alt or the like it means
// something else.
std::optional<DuiKey> KeyOf(WPARAM key, LPARAM how) {
    constexpr LPARAM kWasDown = 1 << 30;
    if (IsDown(VK_CONTROL) || IsDown(VK_MENU) || IsDown(VK_LWIN) || IsDown(VK_RWIN)) return {};
    if ((key == VK_RETURN || key == VK_SPACE) && (how & kWasDown)) return {};
    switch (key) {
        case VK_TAB:
            return IsDown(VK_SHIFT) ? DuiKey::kShiftTab : DuiKey::kTab;
        case VK_RETURN:
            return DuiKey::kEnter;
        case VK_SPACE:
            return DuiKey::kSpace;
        case VK_ESCAPE:
            return DuiKey::kEscape;
        case VK_UP:
            return DuiKey::kUp;
        case VK_DOWN:
            return DuiKey::kDown;
        case VK_PRIOR:
            return DuiKey::kPageUp;
        case VK_NEXT:
            return DuiKey::kPageDown;
        case VK_HOME:
            return DuiKey::kHome;
        case VK_END:
            return DuiKey::kEnd;
        default:
            return {};
    }
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
        throw std::runtime_error(Reason(kNoWindow));
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

CDuiPoint PointOf(LPARAM place) { return {GET_X_LPARAM(place), GET_Y_LPARAM(place)}; }

}  // namespace

struct CWindowWnd::State {
    State(CPaintManagerUI& shown, const WindowOptions& wanted) : manager(shown), options(wanted) {}

    CPaintManagerUI& manager;
    const WindowOptions options;
    HWND handle = nullptr;  // also while the window is being made
    PaintSurface surface;
    std::function<void()> closeHandler;
    std::optional<CPaintManagerUI::TimePoint> nextTick;
    bool inside = false;  // the pointer, and its leaving will be told
    bool pressed = false;
    std::exception_ptr failure;  // of handling a message; it cannot pass through the system
    Window window;               // destroyed before the others

    // ---- Size and scale
    void FollowDisplay() { CResourceManager::GetInstance()->SetScale(options.scale.value_or(DisplayScale(handle))); }

    // The outer size for a content [design px], no larger than what the desktop's bars leave free.
    CDuiSize OuterSize(CDuiSize design) const {
        const CDuiSize content = CResourceManager::GetInstance()->Scale(design);
        const CDuiSize outer = SizeOf(OuterOf(handle, {0, 0, content.cx, content.cy}));
        const CDuiSize room = SizeOf(WorkArea(handle));
        return {std::min(outer.cx, room.cx), std::min(outer.cy, room.cy)};
    }

    void TakeFirstPlace() {
        const CDuiSize size = OuterSize(options.size);
        const RECT room = WorkArea(handle);
        const CDuiSize free{SizeOf(room).cx - size.cx, SizeOf(room).cy - size.cy};
        ::SetWindowPos(handle, nullptr, static_cast<int>(room.left) + free.cx / 2,
                       static_cast<int>(room.top) + free.cy / 2, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
    }

    void FollowSize() {
        if (::IsIconic(handle)) return;
        RECT content{};
        ::GetClientRect(handle, &content);
        manager.SetClientSize(SizeOf(content));
    }

    void MoveToOtherScale(const RECT& suggested) {
        FollowDisplay();
        const CDuiSize size = SizeOf(suggested);
        ::SetWindowPos(handle, nullptr, static_cast<int>(suggested.left), static_cast<int>(suggested.top), size.cx,
                       size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
        FollowSize();
        manager.InvalidateAll();
    }

    // ---- Painting
    void Paint() {
        const auto now = std::chrono::steady_clock::now();
        manager.Tick(now);
        const std::vector<CDuiRect> areas = manager.Paint(surface);
        nextTick = manager.NextTick(now);
        if (areas.empty()) return;
        const HDC screen = ::GetDC(handle);
        for (const CDuiRect& area : areas) Show(screen, area);
        ::ReleaseDC(handle, screen);
    }

    // What the system wants to see again. Where it keeps this thread, while the window is being resized, this is what
    // paints.
    void PaintExposed() {
        PAINTSTRUCT exposed;
        const HDC screen = ::BeginPaint(handle, &exposed);
        if (::IsWindowVisible(handle)) {
            Paint();
            const RECT& area = exposed.rcPaint;
            Show(screen, {static_cast<int>(area.left), static_cast<int>(area.top), static_cast<int>(area.right),
                          static_cast<int>(area.bottom)});
        }
        ::EndPaint(handle, &exposed);
    }

    void Show(HDC screen, const CDuiRect& area) {
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

    // ---- Waiting
    DWORD WaitTime(std::optional<std::chrono::milliseconds> limit) const {
        std::optional<std::chrono::milliseconds> time = limit;
        if (nextTick) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(*nextTick - std::chrono::steady_clock::now());
            time = std::min(std::max(left, std::chrono::milliseconds(0)), time.value_or(left));
        }
        if (!time) return INFINITE;
        return static_cast<DWORD>(std::clamp<std::chrono::milliseconds::rep>(time->count(), 0, INFINITE - 1));
    }

    // ---- Input
    // The system forgets to tell of the leaving once it has told.
    void AwaitLeaving() {
        TRACKMOUSEEVENT leaving{};
        leaving.cbSize = sizeof leaving;
        leaving.dwFlags = TME_LEAVE;
        leaving.hwndTrack = handle;
        inside = ::TrackMouseEvent(&leaving) != FALSE;
    }

    void MovePointer(CDuiPoint point) {
        if (!inside) AwaitLeaving();
        manager.MouseMove(point);
    }

    void Press(CDuiPoint point) {
        pressed = true;
        ::SetCapture(handle);
        manager.ButtonDown(point);
    }

    void Release(CDuiPoint point) {
        pressed = false;
        ::ReleaseCapture();
        manager.ButtonUp(point);
        AwaitLeaving();  // it may be elsewhere already
    }

    // Another window took the pointer: what is pressed is let go without a click.
    void LosePointer() {
        if (std::exchange(pressed, false)) manager.ButtonUp(kNowhere);
    }

    void TurnWheel(CDuiPoint desktop, short turned) {
        POINT point{desktop.x, desktop.y};
        ::ScreenToClient(handle, &point);
        manager.MouseWheel({static_cast<int>(point.x), static_cast<int>(point.y)},
                           -static_cast<double>(turned) / WHEEL_DELTA);
    }

    void AskToClose() {
        kernel::UiTurn turn;
        if (closeHandler) closeHandler();
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
                inside = false;
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

    // The turn is taken for each message: the system's own handling may keep this thread, as while a window is moved.
    static LRESULT CALLBACK Receive(HWND handle, UINT message, WPARAM wide, LPARAM low) {
        if (message == WM_NCCREATE) {
            auto* const made = static_cast<State*>(reinterpret_cast<CREATESTRUCTW*>(low)->lpCreateParams);
            made->handle = handle;
            ::SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
        }
        if (auto* const state = reinterpret_cast<State*>(::GetWindowLongPtrW(handle, GWLP_USERDATA))) {
            kernel::UiTurn turn;
            try {
                if (const auto result = state->Handle(message, wide, low)) return *result;
            } catch (...) {
                state->failure = std::current_exception();
                return 0;
            }
        }
        return ::DefWindowProcW(handle, message, wide, low);
    }

    void RethrowFailure() {
        if (failure) std::rethrow_exception(std::exchange(failure, nullptr));
    }
};

// Services have a desktop that nobody sees.
bool CWindowWnd::HasDisplay(std::string& reason) {
    USEROBJECTFLAGS flags{};
    const HWINSTA station = ::GetProcessWindowStation();
    if (station && ::GetUserObjectInformationW(station, UOI_FLAGS, &flags, sizeof flags, nullptr) &&
        !(flags.dwFlags & WSF_VISIBLE)) {
        reason = std::string(kNoWindow) + ": no display answers";
        return false;
    }
    BeAwareOfScales();
    const Window trial(
        ::CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 1, 1, nullptr, nullptr, ThisModule(), nullptr));
    if (!trial) reason = Reason(kNoWindow);
    return trial != nullptr;
}

CWindowWnd::CWindowWnd(CPaintManagerUI& manager, const WindowOptions& options)
    : m_state(std::make_unique<State>(manager, options)) {
    BeAwareOfScales();
    RegisterClassOnce(&State::Receive);
    State& state = *m_state;
    state.window.reset(::CreateWindowExW(0, kClassName, FromUtf8(options.title).c_str(), WS_OVERLAPPEDWINDOW,
                                         CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr,
                                         ThisModule(), &state));
    if (!state.window) throw std::runtime_error(Reason(kNoWindow));
    kernel::UiTurn turn;
    state.FollowDisplay();
    state.TakeFirstPlace();
    state.FollowSize();
    manager.InvalidateAll();
    ::ShowWindow(state.handle, SW_SHOWNORMAL);
    state.RethrowFailure();
    manager.SetWakeUp([this] { WakeUp(); });
}

CWindowWnd::~CWindowWnd() {
    kernel::UiTurn turn;
    m_state->manager.SetWakeUp({});
}

void CWindowWnd::RunOnce(std::optional<std::chrono::milliseconds> limit) {
    {
        kernel::UiTurn turn;
        m_state->Paint();
    }
    ::MsgWaitForMultipleObjectsEx(0, nullptr, m_state->WaitTime(limit), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    MSG message;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) m_state->AskToClose();
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    m_state->RethrowFailure();
}

void CWindowWnd::WakeUp() { ::PostMessageW(m_state->handle, kWakeUp, 0, 0); }

void CWindowWnd::SetCloseHandler(std::function<void()> handler) { m_state->closeHandler = std::move(handler); }
void CWindowWnd::SetTitle(const std::string& title) { ::SetWindowTextW(m_state->handle, FromUtf8(title).c_str()); }

CDuiPoint CWindowWnd::GetOrigin() const {
    POINT origin{};
    ::ClientToScreen(m_state->handle, &origin);
    return {static_cast<int>(origin.x), static_cast<int>(origin.y)};
}

}  // namespace DuiLib
