// Painting a window: what changed, what moves by itself, and what lies over the tree.
#include <algorithm>
#include <utility>

#include "drawing/canvas.h"
#include "duilib/container.h"
#include "duilib/paint_manager.h"
#include "duilib/render_engine.h"
#include "foundation/diagnostics.h"
#include "foundation/geometry_math.h"
#include "kernel/ui_turn.h"
#include "window/control_painter.h"
#include "window/paint_manager_state.h"

namespace DuiLib {

namespace {

constexpr CDuiColor kWindowColor = 0xFFFFFFFF;       // where the root has no ground
constexpr std::chrono::milliseconds kFrameTime{16};  // between two steps of a movement
constexpr std::size_t kMaxAreas = 16;                // with more, one around them all is painted faster

bool IsWithin(const CDuiRect& inner, const CDuiRect& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

CDuiRect Around(const CDuiRect& a, const CDuiRect& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

}  // namespace

// ---- DirtyArea

// No two of them overlap, so that nothing half transparent is painted twice over itself.
void DirtyArea::Add(const CDuiRect& area) {
    if (area.Width() <= 0 || area.Height() <= 0) return;
    CDuiRect added = area;
    for (std::size_t i = 0; i < m_areas.size();) {
        if (IsWithin(added, m_areas[i])) return;
        if (Intersection(added, m_areas[i]).Width() == 0) {
            ++i;
            continue;
        }
        added = Around(added, m_areas[i]);
        m_areas.erase(m_areas.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0;
    }
    m_areas.push_back(added);
    if (m_areas.size() <= kMaxAreas) return;
    for (const CDuiRect& other : m_areas) added = Around(added, other);
    m_areas.assign(1, added);
}

std::vector<CDuiRect> DirtyArea::Take(const CDuiRect& bounds) {
    std::vector<CDuiRect> taken = std::exchange(m_areas, {});
    for (CDuiRect& area : taken) area = Intersection(area, bounds);
    std::erase_if(taken, [](const CDuiRect& area) { return area.Width() == 0; });
    return taken;
}

// ---- What changed

void CPaintManagerUI::SetWakeUp(std::function<void()> wakeUp) {
    AssertUiTurn();
    m_state->wakeUp = std::move(wakeUp);
    m_state->watched = true;
}

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
    Invalidate(place);
    // The focus ring reaches beyond what its control lies in.
    if (!state.focused || !state.focusShown) return;
    for (const CControlUI* around = state.focused; around; around = around->m_parent) {
        if (around != &control) continue;
        Invalidate(Inflated(state.focused->PlaceInWindow(), ControlPainter::FocusMargin()));
        return;
    }
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
    AssertUiTurn();
    m_state->painted = nullptr;
    Changed();
}

// ---- Painting

std::vector<CDuiRect> CPaintManagerUI::Paint(PaintSurface& surface) {
    kernel::UiTurn turn;
    const std::shared_ptr<State> state = m_state;
    state->watched = true;
    state->awake = true;  // whatever changes from here on is painted below
    const CDuiSize size = surface.Size();
    if (size.cx != state->clientSize.cx || size.cy != state->clientSize.cy) {
        surface = PaintSurface(state->clientSize);
        state->painted = nullptr;
    }
    LayOutForPainting();
    if (state->painted != &surface) state->dirty.Add(state->ClientArea());
    state->painted = &surface;
    UpdateToolTipPlace();
    const std::vector<CDuiRect> areas = state->dirty.Take(state->ClientArea());
    if (!areas.empty()) PaintAreas(surface, areas);
    state->awake = false;
    return areas;
}

void CPaintManagerUI::PaintAreas(PaintSurface& surface, const std::vector<CDuiRect>& areas) {
    State* const state = m_state.get();
    Canvas canvas(surface);
    struct CanvasOfDC {
        PaintDC& dc;
        ~CanvasOfDC() { dc.SetCanvas(nullptr); }
    } const canvasOfDC{state->dc};
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
}

// What was laid out anew, by whomever, may have come under a resting pointer.
void CPaintManagerUI::LayOutForPainting() {
    Layout();
    if (std::exchange(m_state->laidOut, false) && m_state->pointer && !m_state->dragged) UpdateHovered();
    UpdateHot();
}

// ---- What moves by itself

void CPaintManagerUI::BeginTicks(CControlUI& control) {
    if (std::ranges::find(m_state->moving, &control) == m_state->moving.end()) m_state->moving.push_back(&control);
    Changed();
}

auto CPaintManagerUI::Tick(TimePoint now) -> std::optional<TimePoint> {
    kernel::UiTurn turn;
    State& state = *m_state;
    const bool awake = std::exchange(state.awake, true);  // whoever calls this paints
    std::erase_if(state.moving, [now](CControlUI* control) { return !control->Tick(now); });
    if (state.tip.Tick(now)) UpdateToolTipPlace();
    state.awake = awake;
    return NextTick(now);
}

auto CPaintManagerUI::NextTick(TimePoint now) -> std::optional<TimePoint> {
    kernel::UiTurn turn;
    std::optional<TimePoint> next = m_state->tip.Due(now);
    if (!m_state->moving.empty()) next = std::min(now + kFrameTime, next.value_or(TimePoint::max()));
    return next;
}

// ---- The tool tip

// A text that is set again, to say the same again, is shown again where it was dismissed.
void CPaintManagerUI::ToolTipSet(const CControlUI& control, bool changed) {
    State& state = *m_state;
    UpdateToolTipOwner();
    if (state.tip.Owner() != &control) return;
    if (!changed && (state.tip.Shown() || state.tip.IsWaiting())) return;
    state.tip.Restart();
    UpdateToolTipPlace();
    Changed();
}

CControlUI* CPaintManagerUI::GetToolTipOwner() const {
    AssertUiTurn();
    return m_state->tip.Shown();
}

void CPaintManagerUI::UpdateToolTipOwner() {
    State& state = *m_state;
    CControlUI* owner = state.keyboardLast ? state.focused : state.hovered;
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
