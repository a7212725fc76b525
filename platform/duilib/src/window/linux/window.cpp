#include "duilib/window.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string_view>

#include "duilib/paint_manager.h"
#include "duilib/paint_surface.h"
#include "duilib/resource_manager.h"
#include "kernel/ui_turn.h"
#include "window/linux/window_scale.h"

namespace DuiLib {

namespace {

constexpr const char* kNoWindow = "no window can be opened";

std::string Reason(const char* what) { return std::string(what) + ": " + SDL_GetError(); }

// Where no display answers, SDL takes a driver that shows nothing to anybody, unless it was told which one to take.
bool NobodySeesIt() {
    const char* const wanted = SDL_GetHint(SDL_HINT_VIDEODRIVER);
    const char* const taken = SDL_GetCurrentVideoDriver();
    return (!wanted || !*wanted) && taken && std::string_view(taken) == "offscreen";
}

// SDL's part for windows, as long as one is open. No OpenGL: the picture is made here and handed over.
class Video {
public:
    Video() {
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
        SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
        if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) throw std::runtime_error(Reason(kNoWindow));
        if (!NobodySeesIt()) return;
        Quit();
        throw std::runtime_error(std::string(kNoWindow) + ": no display answers");
    }
    ~Video() { Quit(); }

private:
    static void Quit() {
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        SDL_Quit();
    }
};

// A key that is held down moves and scrolls again and again, but presses once; with Ctrl, Alt or the like it means
// something else.
std::optional<DuiKey> KeyOf(const SDL_KeyboardEvent& event) {
    const SDL_Keysym& key = event.keysym;
    if (key.mod & (KMOD_CTRL | KMOD_ALT | KMOD_GUI)) return {};
    const bool presses = key.sym == SDLK_RETURN || key.sym == SDLK_KP_ENTER || key.sym == SDLK_SPACE;
    if (presses && event.repeat) return {};
    switch (key.sym) {
        case SDLK_TAB:
            return key.mod & KMOD_SHIFT ? DuiKey::kShiftTab : DuiKey::kTab;
        case SDLK_RETURN:
        case SDLK_KP_ENTER:
            return DuiKey::kEnter;
        case SDLK_SPACE:
            return DuiKey::kSpace;
        case SDLK_ESCAPE:
            return DuiKey::kEscape;
        case SDLK_UP:
            return DuiKey::kUp;
        case SDLK_DOWN:
            return DuiKey::kDown;
        case SDLK_PAGEUP:
            return DuiKey::kPageUp;
        case SDLK_PAGEDOWN:
            return DuiKey::kPageDown;
        case SDLK_HOME:
            return DuiKey::kHome;
        case SDLK_END:
            return DuiKey::kEnd;
        default:
            return {};
    }
}

struct DestroyWindow {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};
struct FreeSurface {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};

}  // namespace

struct CWindowWnd::State {
    State(CPaintManagerUI& shown, const WindowOptions& wanted) : manager(shown), options(wanted) {}

    Video video;
    CPaintManagerUI& manager;
    const WindowOptions options;
    std::unique_ptr<SDL_Window, DestroyWindow> window;
    std::uint32_t wakeEvent = 0;
    PaintSurface surface;
    std::function<void()> closeHandler;
    std::optional<CPaintManagerUI::TimePoint> nextTick;

    // ---- Size and scale
    void FollowDisplay() {
        CResourceManager& resources = *CResourceManager::GetInstance();
        resources.SetScale(options.scale.value_or(DisplayScale(window.get())));
        const CDuiSize least = InUnits(options.smallest);
        SDL_SetWindowMinimumSize(window.get(), least.cx, least.cy);
    }

    // A size [design px] in the desktop's units; no larger than the display that the window is on.
    CDuiSize InUnits(CDuiSize design) const {
        const double unit = PixelsPerUnit(window.get());
        const CDuiSize pixels = CResourceManager::GetInstance()->Scale(design);
        CDuiSize size{static_cast<int>(pixels.cx / unit), static_cast<int>(pixels.cy / unit)};
        SDL_Rect room;
        const int display = SDL_GetWindowDisplayIndex(window.get());
        if (display >= 0 && SDL_GetDisplayUsableBounds(display, &room) == 0) {
            size = {std::min(size.cx, room.w), std::min(size.cy, room.h)};
        }
        return size;
    }

    void FollowSize() {
        CDuiSize size;
        SDL_GetWindowSizeInPixels(window.get(), &size.cx, &size.cy);
        manager.SetClientSize(size);
    }

    // ---- Painting
    void Paint() {
        const auto now = std::chrono::steady_clock::now();
        manager.Tick(now);
        const std::vector<CDuiRect> areas = manager.Paint(surface);
        nextTick = manager.NextTick(now);
        if (areas.empty()) return;
        SDL_Surface* const target = SDL_GetWindowSurface(window.get());
        if (!target) {
            surface = {};  // the next painting is whole
            return;
        }
        const CDuiSize size = surface.Size();
        const std::unique_ptr<SDL_Surface, FreeSurface> source(SDL_CreateRGBSurfaceWithFormatFrom(
            surface.Pixels(), size.cx, size.cy, 32, surface.BytesPerRow(), SDL_PIXELFORMAT_RGB888));
        std::vector<SDL_Rect> updates;
        for (const CDuiRect& area : areas) {
            SDL_Rect place{area.left, area.top, area.Width(), area.Height()};
            SDL_BlitSurface(source.get(), &place, target, &place);
            updates.push_back({area.left, area.top, area.Width(), area.Height()});
        }
        SDL_UpdateWindowSurfaceRects(window.get(), updates.data(), static_cast<int>(updates.size()));
    }

    // ---- Waiting
    int WaitTime(std::optional<std::chrono::milliseconds> limit) const {
        std::optional<std::chrono::milliseconds> time = limit;
        if (nextTick) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(*nextTick - std::chrono::steady_clock::now());
            time = std::min(std::max(left, std::chrono::milliseconds(0)), time.value_or(left));
        }
        return time ? static_cast<int>(std::max<std::chrono::milliseconds::rep>(0, time->count())) : -1;
    }

    // ---- Input
    CDuiPoint PointOf(int x, int y) const {
        const double unit = PixelsPerUnit(window.get());
        return {static_cast<int>(x * unit), static_cast<int>(y * unit)};
    }

    void Handle(const SDL_Event& event) {
        switch (event.type) {
            case SDL_MOUSEMOTION:
                manager.MouseMove(PointOf(event.motion.x, event.motion.y));
                break;
            case SDL_MOUSEBUTTONDOWN:
                if (event.button.button == SDL_BUTTON_LEFT) manager.ButtonDown(PointOf(event.button.x, event.button.y));
                break;
            case SDL_MOUSEBUTTONUP:
                if (event.button.button == SDL_BUTTON_LEFT) manager.ButtonUp(PointOf(event.button.x, event.button.y));
                break;
            case SDL_MOUSEWHEEL:
                HandleWheel(event.wheel);
                break;
            case SDL_KEYDOWN:
                if (const auto key = KeyOf(event.key)) manager.KeyDown(*key);
                break;
            case SDL_WINDOWEVENT:
                HandleWindow(event.window.event);
                break;
            case SDL_QUIT:
                if (closeHandler) closeHandler();
                break;
            default:
                break;
        }
    }

    void HandleWheel(const SDL_MouseWheelEvent& wheel) {
        const double up = wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -wheel.preciseY : wheel.preciseY;
        manager.MouseWheel(PointOf(wheel.mouseX, wheel.mouseY), -up);
    }

    void HandleWindow(std::uint8_t what) {
        switch (what) {
            case SDL_WINDOWEVENT_SIZE_CHANGED:
                FollowSize();
                break;
            case SDL_WINDOWEVENT_DISPLAY_CHANGED:
                FollowDisplay();
                FollowSize();
                break;
            case SDL_WINDOWEVENT_EXPOSED:
                manager.InvalidateAll();
                break;
            case SDL_WINDOWEVENT_LEAVE:
                manager.MouseLeave();
                break;
            default:
                break;
        }
    }
};

bool CWindowWnd::HasDisplay(std::string& reason) {
    try {
        const Video video;
        return true;
    } catch (const std::runtime_error& error) {
        reason = error.what();
        return false;
    }
}

CWindowWnd::CWindowWnd(CPaintManagerUI& manager, const WindowOptions& options)
    : m_state(std::make_unique<State>(manager, options)) {
    kernel::UiTurn turn;
    State& state = *m_state;
    state.wakeEvent = SDL_RegisterEvents(1);
    const CDuiSize first = CResourceManager::GetInstance()->Scale(options.size);
    state.window.reset(SDL_CreateWindow(options.title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, first.cx,
                                        first.cy, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI | SDL_WINDOW_HIDDEN));
    if (!state.window) throw std::runtime_error(Reason(kNoWindow));
    state.FollowDisplay();
    const CDuiSize size = state.InUnits(options.size);
    SDL_SetWindowSize(state.window.get(), size.cx, size.cy);
    SDL_SetWindowPosition(state.window.get(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
    SDL_ShowWindow(state.window.get());
    state.FollowSize();
    manager.SetWakeUp([this] { WakeUp(); });
    manager.InvalidateAll();
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
    SDL_Event event;
    int some = SDL_WaitEventTimeout(&event, m_state->WaitTime(limit));
    kernel::UiTurn turn;
    for (; some; some = SDL_PollEvent(&event)) m_state->Handle(event);
}

void CWindowWnd::WakeUp() {
    SDL_Event event{};
    event.type = m_state->wakeEvent;
    SDL_PushEvent(&event);
}

void CWindowWnd::SetCloseHandler(std::function<void()> handler) { m_state->closeHandler = std::move(handler); }
void CWindowWnd::SetTitle(const std::string& title) { SDL_SetWindowTitle(m_state->window.get(), title.c_str()); }

CDuiPoint CWindowWnd::GetOrigin() const {
    CDuiPoint origin;
    SDL_GetWindowPosition(m_state->window.get(), &origin.x, &origin.y);
    return m_state->PointOf(origin.x, origin.y);
}

}  // namespace DuiLib
