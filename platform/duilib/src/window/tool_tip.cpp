#include "window/tool_tip.h"

namespace DuiLib {

void ToolTipTimer::Over(CControlUI* control) {
    if (control == m_owner) return;
    m_owner = control;
    Dismiss();
    m_waiting = control != nullptr;
}

void ToolTipTimer::Restart() {
    Dismiss();
    m_waiting = m_owner != nullptr;
}

void ToolTipTimer::Dismiss() {
    m_waiting = m_shown = false;
    m_due.reset();
}

auto ToolTipTimer::Due(TimePoint now) -> std::optional<TimePoint> {
    if (m_waiting && !m_due) m_due = now + kDelay;
    return m_due;
}

bool ToolTipTimer::Tick(TimePoint now) {
    if (!m_waiting || now < *Due(now)) return false;
    Dismiss();
    m_shown = true;
    return true;
}

}  // namespace DuiLib
