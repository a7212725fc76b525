#include "window/native_window.h"

#include <SDL.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

#include "duilib/resource_manager.h"
#include "duilib/window.h"
#include "kernel/ui_turn.h"
#include "window/linux/window_scale.h"

namespace DuiLib {

namespace {

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
        throw std::runtime_error(kNoDisplay);
    }
    ~Video() { Quit(); }

private:
    static void Quit() {
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        SDL_Quit();
    }
};

constexpr std::array kKeys = {
    std::pair<SDL_Keycode, DuiKey>{SDLK_TAB, DuiKey::kTab},
    std::pair<SDL_Keycode, DuiKey>{SDLK_RETURN, DuiKey::kEnter},
    std::pair<SDL_Keycode, DuiKey>{SDLK_KP_ENTER, DuiKey::kEnter},
    std::pair<SDL_Keycode, DuiKey>{SDLK_SPACE, DuiKey::kSpace},
    std::pair<SDL_Keycode, DuiKey>{SDLK_ESCAPE, DuiKey::kEscape},
    std::pair<SDL_Keycode, DuiKey>{SDLK_UP, DuiKey::kUp},
    std::pair<SDL_Keycode, DuiKey>{SDLK_DOWN, DuiKey::kDown},
    std::pair<SDL_Keycode, DuiKey>{SDLK_PAGEUP, DuiKey::kPageUp},
    std::pair<SDL_Keycode, DuiKey>{SDLK_PAGEDOWN, DuiKey::kPageDown},
    std::pair<SDL_Keycode, DuiKey>{SDLK_HOME, DuiKey::kHome},
    std::pair<SDL_Keycode, DuiKey>{SDLK_END, DuiKey::kEnd},
};

std::optional<DuiKey> KeyOf(const SDL_KeyboardEvent& event) {
    const auto modifiers = event.keysym.mod;
    const KeyStroke how{event.repeat != 0, (modifiers & KMOD_SHIFT) != 0,
                        (modifiers & (KMOD_CTRL | KMOD_ALT | KMOD_GUI)) != 0};
    return MeaningOf(FindKey<SDL_Keycode>(kKeys, event.keysym.sym), how);
}

struct DestroyWindow {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};
struct FreeSurface {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};

class SdlWindow final : public NativeWindow {
public:
    SdlWindow(CPaintManagerUI& shown, const WindowOptions& wanted) : NativeWindow(shown, wanted) {
        m_wakeEvent = SDL_RegisterEvents(1);
        const CDuiSize first = CResourceManager::GetInstance()->Scale(options.size);
        m_window.reset(SDL_CreateWindow(options.title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, first.cx,
                                        first.cy, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI | SDL_WINDOW_HIDDEN));
        if (!m_window) throw std::runtime_error(Reason(kNoWindow));
        FollowDisplay();
        const CDuiSize size = InUnits(options.size);
        SDL_SetWindowSize(m_window.get(), size.cx, size.cy);
        SDL_SetWindowPosition(m_window.get(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED);
        SDL_ShowWindow(m_window.get());
        FollowSize();
        manager.InvalidateAll();
    }

    void WaitAndHandle(std::optional<std::chrono::milliseconds> limit) override {
        const auto time = WaitTime(limit);
        SDL_Event event;
        int some = SDL_WaitEventTimeout(&event, time ? static_cast<int>(time->count()) : -1);
        kernel::UiTurn turn;
        for (; some; some = SDL_PollEvent(&event)) Handle(event);
    }

    void WakeUp() override {
        SDL_Event event{};
        event.type = m_wakeEvent;
        SDL_PushEvent(&event);
    }

    void SetTitle(const std::string& title) override { SDL_SetWindowTitle(m_window.get(), title.c_str()); }

    CDuiPoint Origin() const override {
        CDuiPoint origin;
        SDL_GetWindowPosition(m_window.get(), &origin.x, &origin.y);
        return PointOf(origin.x, origin.y);
    }

private:
    // ---- Size and scale
    void FollowDisplay() {
        FollowScale(DisplayScale(m_window.get()));
        const CDuiSize least = InUnits(options.smallest);
        SDL_SetWindowMinimumSize(m_window.get(), least.cx, least.cy);
    }

    // A size [design px] in the desktop's units; no larger than the display that the window is on.
    CDuiSize InUnits(CDuiSize design) const {
        const double unit = PixelsPerUnit(m_window.get());
        const CDuiSize pixels = CResourceManager::GetInstance()->Scale(design);
        CDuiSize size{static_cast<int>(pixels.cx / unit), static_cast<int>(pixels.cy / unit)};
        SDL_Rect room;
        const int display = SDL_GetWindowDisplayIndex(m_window.get());
        if (display >= 0 && SDL_GetDisplayUsableBounds(display, &room) == 0) {
            size = {std::min(size.cx, room.w), std::min(size.cy, room.h)};
        }
        return size;
    }

    void FollowSize() {
        CDuiSize size;
        SDL_GetWindowSizeInPixels(m_window.get(), &size.cx, &size.cy);
        manager.SetClientSize(size);
    }

    // ---- Painting
    bool Show(const std::vector<CDuiRect>& areas) override {
        SDL_Surface* const target = SDL_GetWindowSurface(m_window.get());
        if (!target) return false;
        const CDuiSize size = surface.Size();
        const std::unique_ptr<SDL_Surface, FreeSurface> source(SDL_CreateRGBSurfaceWithFormatFrom(
            surface.Pixels(), size.cx, size.cy, 32, surface.BytesPerRow(), SDL_PIXELFORMAT_RGB888));
        std::vector<SDL_Rect> updates;
        for (const CDuiRect& area : areas) {
            SDL_Rect place{area.left, area.top, area.Width(), area.Height()};
            SDL_BlitSurface(source.get(), &place, target, &place);
            updates.push_back({area.left, area.top, area.Width(), area.Height()});
        }
        SDL_UpdateWindowSurfaceRects(m_window.get(), updates.data(), static_cast<int>(updates.size()));
        return true;
    }

    // ---- Input
    CDuiPoint PointOf(int x, int y) const {
        const double unit = PixelsPerUnit(m_window.get());
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
                AskToClose();
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

    Video m_video;
    std::unique_ptr<SDL_Window, DestroyWindow> m_window;
    std::uint32_t m_wakeEvent = 0;
};

}  // namespace

bool NativeWindow::HasDisplay(std::string& reason) {
    try {
        const Video video;
        return true;
    } catch (const std::runtime_error& error) {
        reason = error.what();
        return false;
    }
}

std::unique_ptr<NativeWindow> NativeWindow::Open(CPaintManagerUI& manager, const WindowOptions& options) {
    kernel::UiTurn turn;
    return std::make_unique<SdlWindow>(manager, options);
}

}  // namespace DuiLib
