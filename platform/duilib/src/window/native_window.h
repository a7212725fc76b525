#pragma once

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "duilib/paint_manager.h"
#include "duilib/paint_surface.h"
#include "duilib/window.h"

namespace DuiLib {

// What stands behind a CWindowWnd. This class is what such a window does on every system; linux/ and windows/ derive
// from it what they open, show, wait for and translate. UI thread, under the UI turn where not said otherwise.
class NativeWindow {
public:
    // The two doors to the system's window, see CWindowWnd.
    static bool HasDisplay(std::string& reason);
    static std::unique_ptr<NativeWindow> Open(CPaintManagerUI& manager, const WindowOptions& options);

    virtual ~NativeWindow() = default;
    NativeWindow(const NativeWindow&) = delete;
    NativeWindow& operator=(const NativeWindow&) = delete;

    void Paint();       // what changed, and shows it
    void AskToClose();  // the user does

    // Waits for input or WakeUp, no longer than until the limit or the next tick, and handles what came. Takes the turn
    // after the wait.
    virtual void WaitAndHandle(std::optional<std::chrono::milliseconds> limit) = 0;
    virtual void WakeUp() = 0;  // any thread, without the turn
    virtual void SetTitle(const std::string& title) = 0;
    virtual CDuiPoint Origin() const = 0;

    CPaintManagerUI& manager;
    const WindowOptions options;
    std::function<void()> closeHandler;

protected:
    NativeWindow(CPaintManagerUI& shown, const WindowOptions& wanted) : manager(shown), options(wanted) {}

    // Puts these areas of the surface onto the desktop. False when that is not possible now.
    virtual bool Show(const std::vector<CDuiRect>& areas) = 0;

    void FollowScale(unsigned displayScale);  // [percent]
    std::optional<std::chrono::milliseconds> WaitTime(std::optional<std::chrono::milliseconds> limit) const;

    PaintSurface surface;

private:
    std::optional<CPaintManagerUI::TimePoint> m_nextTick;
};

inline constexpr const char* kNoWindow = "no window can be opened";
inline constexpr const char* kNoDisplay = "no window can be opened: no display answers";

// What is left at `now` until the limit or the next tick, whichever comes first; nothing: for ever.
std::optional<std::chrono::milliseconds> TimeToWait(std::optional<std::chrono::milliseconds> limit,
                                                    std::optional<CPaintManagerUI::TimePoint> nextTick,
                                                    CPaintManagerUI::TimePoint now);

struct KeyStroke {
    bool repeated;  // the key is held down
    bool shift;
    bool command;  // Ctrl, Alt or the like is held, too
};

// What a key means, found by the system's code in a table of the system's.
std::optional<DuiKey> MeaningOf(std::optional<DuiKey> key, const KeyStroke& how);

template <class Code>
std::optional<DuiKey> FindKey(std::span<const std::pair<Code, DuiKey>> keys, Code code) {
    for (const auto& [known, key] : keys) {
        if (known == code) return key;
    }
    return {};
}

// The nearest step of 25 between 100 and 300 [percent] for a number of device pixels an inch.
unsigned ScaleForDensity(double dotsPerInch);
inline constexpr double kPlainDensity = 96;  // [dots an inch] at 100 percent

}  // namespace DuiLib
