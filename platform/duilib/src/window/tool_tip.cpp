#include "window/tool_tip.h"

#include <algorithm>

#include "duilib/render_engine.h"

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

// ---- Its picture

namespace {

constexpr int kMaxTextWidth = 280;  // [design px] at which a tip is wrapped
constexpr int kPaddingX = 12;       // [design px]
constexpr int kPaddingY = 8;        // [design px]
constexpr int kDistance = 6;        // [design px] from the control, and from the window's edge
constexpr int kCorner = 6;          // [design px]
constexpr CDuiColor kGround = 0xFF2B2F36;
constexpr CDuiColor kText = 0xFFFFFFFF;

FontDescription Font() { return {"Noto Sans", 12, false}; }

int Scaled(int design) { return CResourceManager::GetInstance()->Scale(design); }

}  // namespace

CDuiRect PlaceToolTip(std::wstring_view text, const CDuiRect& control, CDuiSize window) {
    const int distance = Scaled(kDistance);
    const int room = std::max(1, std::min(Scaled(kMaxTextWidth), window.cx - 2 * (Scaled(kPaddingX) + distance)));
    const CDuiSize size =
        CRenderEngine::GetTextMeasurer().Measure(text, Font(), CResourceManager::GetInstance()->GetScale(), room, true);
    const int width = size.cx + 2 * Scaled(kPaddingX);
    const int height = size.cy + 2 * Scaled(kPaddingY);
    const int middle = (control.left + control.right) / 2;
    const int left = std::max(distance, std::min(middle - width / 2, window.cx - distance - width));
    int top = control.bottom + distance;
    if (top + height > window.cy) top = std::max(0, control.top - distance - height);
    return {left, top, left + width, top + height};
}

void PaintToolTip(Canvas& canvas, std::wstring_view text, const CDuiRect& place) {
    canvas.Fill(place, {Scaled(kCorner), Scaled(kCorner)}, kGround);
    const CDuiRect room{place.left + Scaled(kPaddingX), place.top + Scaled(kPaddingY), place.right - Scaled(kPaddingX),
                        place.bottom - Scaled(kPaddingY)};
    canvas.Text(room, text, Font(), CResourceManager::GetInstance()->GetScale(), kText, kTextWordBreak);
}

}  // namespace DuiLib
