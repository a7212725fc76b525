#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "drawing/canvas.h"

namespace DuiLib {

class CControlUI;

// When the tool tip of which control is shown: a while after the pointer or the focus came to rest on the control, or
// after the tip's text was set there. Keeps no text; UI turn.
class ToolTipTimer {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    static constexpr std::chrono::milliseconds kDelay{500};

    // The control that would show its tip now; null for none. A change hides the tip and starts to wait.
    void Over(CControlUI* control);
    // Waits anew: the text is another.
    void Restart();
    // Hides the tip until Over another control or Restart.
    void Dismiss();

    // True when the tip has become due.
    bool Tick(TimePoint now);
    // When Tick has something to do next; nothing when the tip waits for nothing.
    std::optional<TimePoint> Due(TimePoint now);
    bool IsWaiting() const { return m_waiting; }

    CControlUI* Owner() const { return m_owner; }
    CControlUI* Shown() const { return m_shown ? m_owner : nullptr; }

private:
    CControlUI* m_owner = nullptr;
    bool m_waiting = false;
    bool m_shown = false;
    std::optional<TimePoint> m_due;  // known once a wait was looked at
};

// [device px] Where the tip of a control goes in a window: below the control, or above where there is no room.
CDuiRect PlaceToolTip(std::wstring_view text, const CDuiRect& control, CDuiSize window);

void PaintToolTip(Canvas& canvas, std::wstring_view text, const CDuiRect& place);

}  // namespace DuiLib
