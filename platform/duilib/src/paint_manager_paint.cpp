// Painting a window: what changed, what moves by itself, and what lies over the tree.
#include <algorithm>
#include <utility>

#include "canvas.h"
#include "control_painter.h"
#include "duilib/control.h"
#include "duilib/paint_manager.h"
#include "duilib/render_engine.h"
#include "duilib/scroll_view.h"
#include "extent.h"
#include "kernel/ui_turn.h"
#include "paint_manager_state.h"
#include "tool_tip_painter.h"

namespace DuiLib {

namespace {

constexpr CDuiColor kWindowColor = 0xFFFFFFFF;       // where the root has no ground
constexpr std::chrono::milliseconds kFrameTime{16};  // between two steps of a movement

}  // namespace

// ---- What changed

void CPaintManagerUI::SetWakeUp(std::function<void()> wakeUp) {
    m_state->wakeUp = std::move(wakeUp);
    m_state->watched = true;
}

bool CPaintManagerUI::WatchesChanges() const { return m_state->watched; }

void CPaintManagerUI::Changed() {
    State& state = *m_state;
    if (!state.watched || std::exchange(state.awake, true)) return;
    if (state.wakeUp) state.wakeUp();
}

void CPaintManagerUI::Invalidate(const CControlUI& control) {
    const State& state = *m_state;
    CDuiRect place = control.m_place;
    for (const CControlUI* around = control.m_parent; around; around = around->m_parent) {
        const CDuiRect& outer = around->m_place;
        place = Intersection(place, {0, 0, outer.Width(), outer.Height()});
        if (place.Width() == 0) return;
        place = {place.left + outer.left, place.top + outer.top, place.right + outer.left, place.bottom + outer.top};
    }
    // The focus ring reaches beyond what the control lies in.
    if (&control == state.focused) place = Inflated(place, ControlPainter::FocusMargin());
    Invalidate(place);
}

void CPaintManagerUI::Invalidate(const CDuiRect& area) {
    State& state = *m_state;
    if (!state.watched) return;
    const CDuiRect visible = Intersection(area, state.ClientArea());
    if (visible.Width() == 0) return;
    state.dirty.Add(visible);
    Changed();
}

void CPaintManagerUI::InvalidateAll() {
    m_state->painted = nullptr;
    Changed();
}

// ---- Painting

std::vector<CDuiRect> CPaintManagerUI::Paint(PaintSurface& surface) {
    kernel::UiTurn turn;
    const std::shared_ptr<State> state = m_state;
    state->watched = true;
    const CDuiSize size = surface.Size();
    if (size.cx != state->clientSize.cx || size.cy != state->clientSize.cy) surface = PaintSurface(state->clientSize);
    LayOutForPainting();
    if (state->painted != &surface) state->dirty.Add(state->ClientArea());
    state->painted = &surface;
    state->awake = false;
    UpdateToolTipPlace();
    const std::vector<CDuiRect> areas = state->dirty.Take(state->ClientArea());
    if (areas.empty()) return areas;

    Canvas canvas(surface);
    state->dc.SetCanvas(&canvas);
    for (const CDuiRect& area : areas) {
        canvas.Clip(area);
        canvas.Clear(area, kWindowColor);
        const ControlPainter painter{canvas, *state, area};
        if (state->root) painter.PaintTree(*state->root, {}, true);
        if (state->focused && state->focusShown && state->focused->IsShown()) painter.PaintFocus(*state->focused);
        if (CControlUI* owner = state->tip.Shown()) PaintToolTip(canvas, owner->GetToolTip(), state->tipPlace);
        canvas.Restore();
    }
    state->dc.SetCanvas(nullptr);
    return areas;
}

// What is laid out anew may have come under a resting pointer.
void CPaintManagerUI::LayOutForPainting() {
    const bool pending = m_state->root && m_state->root->m_arrangePending;
    Layout();
    if (pending && m_state->pointer) UpdateHovered();
}

// ---- What moves by itself

void CPaintManagerUI::Moving(CScrollViewUI* view) {
    if (std::ranges::find(m_state->moving, view) == m_state->moving.end()) m_state->moving.push_back(view);
    Changed();
}

auto CPaintManagerUI::Tick(TimePoint now) -> std::optional<TimePoint> {
    kernel::UiTurn turn;
    State& state = *m_state;
    std::erase_if(state.moving, [now](CScrollViewUI* view) { return !view->Tick(now); });
    if (state.tip.Tick(now)) UpdateToolTipPlace();
    std::optional<TimePoint> next = state.tip.Due();
    if (!state.moving.empty()) next = std::min(now + kFrameTime, next.value_or(TimePoint::max()));
    return next;
}

// ---- The tool tip

void CPaintManagerUI::ToolTipSet(const CControlUI* control) {
    State& state = *m_state;
    UpdateToolTipOwner();
    if (state.tip.Owner() != control) return;
    state.tip.Restart();
    UpdateToolTipPlace();
    Changed();
}

CControlUI* CPaintManagerUI::GetToolTipOwner() const { return m_state->tip.Shown(); }

void CPaintManagerUI::UpdateToolTipOwner() {
    State& state = *m_state;
    CControlUI* owner = state.focusShown ? state.focused : state.hovered;
    while (owner && owner->GetToolTip().IsEmpty()) owner = owner->m_parent;
    if (owner == state.tip.Owner()) return;
    state.tip.Over(owner);
    UpdateToolTipPlace();
    Changed();
}

void CPaintManagerUI::DismissToolTip() {
    m_state->tip.Dismiss();
    UpdateToolTipPlace();
}

void CPaintManagerUI::UpdateToolTipPlace() {
    State& state = *m_state;
    CControlUI* const owner = state.tip.Shown();
    CDuiRect place;
    if (owner && owner->IsShown()) place = PlaceToolTip(owner->GetToolTip(), owner->GetPos(), state.clientSize);
    const CDuiRect before = std::exchange(state.tipPlace, place);
    const bool same = before.left == place.left && before.top == place.top && before.right == place.right &&
                      before.bottom == place.bottom;
    if (same) return;
    Invalidate(before);
    Invalidate(place);
}

}  // namespace DuiLib
