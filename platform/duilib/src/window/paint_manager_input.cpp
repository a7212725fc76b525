// What input does to the model of a window: where it lands, and which notification it becomes.
#include <algorithm>
#include <ranges>
#include <utility>

#include "duilib/container.h"
#include "duilib/paint_manager.h"
#include "foundation/diagnostics.h"
#include "kernel/ui_turn.h"
#include "tree/control_look.h"
#include "window/paint_manager_state.h"

namespace DuiLib {

// Looks into the tree as it was laid out. Points are relative to the parent of the control that is asked.
struct CPaintManagerUI::HitTest {
    static CDuiPoint Into(const CControlUI& control, CDuiPoint point) {
        return {point.x - control.m_place.left, point.y - control.m_place.top};
    }

    static CControlUI* Button(CControlUI& control, CDuiPoint point) {
        if (!control.m_visible || !control.m_enabled || !control.m_place.Contains(point)) return nullptr;
        for (CControlUI* child : control.Children() | std::views::reverse) {
            if (CControlUI* hit = Button(*child, Into(control, point))) return hit;
        }
        return control.TakesPointer() ? &control : nullptr;
    }

    static CControlUI* Innermost(CControlUI& control, CDuiPoint point) {
        if (!control.m_visible || !control.m_place.Contains(point)) return nullptr;
        for (CControlUI* child : control.Children() | std::views::reverse) {
            if (CControlUI* hit = Innermost(*child, Into(control, point))) return hit;
        }
        return &control;
    }

    // The buttons that can be clicked, in the order of the tree, and `mark`, wherever it is.
    static void Buttons(CControlUI& control, const CControlUI* mark, bool usable, std::vector<CControlUI*>& buttons) {
        usable = usable && control.m_visible && control.m_enabled;
        if (&control == mark || (usable && control.TakesPointer())) buttons.push_back(&control);
        for (CControlUI* child : control.Children()) Buttons(*child, mark, usable, buttons);
    }

    // The controls under the point, buttons excluded, that change their look for the pointer.
    static void Hot(CControlUI& control, CDuiPoint point, std::vector<CControlUI*>& hot) {
        if (!control.m_visible || !control.m_place.Contains(point)) return;
        if (!control.TakesPointer() && control.Look().ChangesUnderPointer()) hot.push_back(&control);
        for (CControlUI* child : control.Children()) Hot(*child, Into(control, point), hot);
    }

    // The first one that moves its content.
    static CControlUI* FirstScroller(CControlUI& control) {
        if (!control.m_visible) return nullptr;
        if (control.MovesContent()) return &control;
        for (CControlUI* child : control.Children()) {
            if (CControlUI* scroller = FirstScroller(*child)) return scroller;
        }
        return nullptr;
    }

    // The innermost one around the control, itself included, that moves its content.
    static CControlUI* ScrollerAround(CControlUI* control) {
        while (control && !control->MovesContent()) control = control->m_parent;
        return control;
    }

    static bool LiesIn(const CControlUI* control, const CControlUI* outer) {
        while (control && control != outer) control = control->m_parent;
        return control != nullptr;
    }

    static CDuiPoint LocalTo(const CControlUI& control, CDuiPoint point) {
        const CDuiRect place = control.PlaceInWindow();
        return {point.x - place.left, point.y - place.top};
    }

    static bool CanBeClicked(const CControlUI* control) {
        if (!control || !control->TakesPointer()) return false;
        for (; control; control = control->m_parent) {
            if (!control->m_visible || !control->m_enabled) return false;
        }
        return true;
    }
};

// Where input may go: the whole window, or what holds it.
CControlUI* CPaintManagerUI::InputRoot() const {
    return m_state->modal && m_state->modal->IsShown() ? m_state->modal : m_state->root;
}

CControlUI* CPaintManagerUI::Hit(CDuiPoint point) const {
    CControlUI* const root = InputRoot();
    if (!root) return nullptr;
    if (root->m_parent) point = HitTest::LocalTo(*root->m_parent, point);
    CControlUI* const button = HitTest::Button(*root, point);
    return button ? button : HitTest::Innermost(*root, point);
}

CControlUI* CPaintManagerUI::FindControl(CDuiPoint point) {
    AssertUiTurn();
    Layout();
    return Hit(point);
}

// ---- Pointer

void CPaintManagerUI::MouseMove(CDuiPoint point) {
    kernel::UiTurn turn;
    const bool moved = !m_state->pointer || m_state->pointer->x != point.x || m_state->pointer->y != point.y;
    m_state->pointer = point;
    if (m_state->dragged) {
        m_state->dragged->DragTo(HitTest::LocalTo(*m_state->dragged, point));
        return;
    }
    if (moved) m_state->keyboardLast = false;
    Layout();
    UpdateHovered();
}

void CPaintManagerUI::MouseLeave() {
    kernel::UiTurn turn;
    m_state->pointer.reset();
    UpdateHovered();
}

void CPaintManagerUI::UpdateHovered() {
    State& state = *m_state;
    CControlUI* const hit = state.pointer ? Hit(*state.pointer) : nullptr;
    if (CControlUI* const before = std::exchange(state.hovered, hit); before != hit) {
        if (before) before->Invalidate();
        if (hit) hit->Invalidate();
    }
    UpdateHot();
    UpdateToolTipOwner();
}

void CPaintManagerUI::UpdateHot() {
    State& state = *m_state;
    std::vector<CControlUI*> hot;
    if (state.watched && state.root && state.pointer) HitTest::Hot(*state.root, *state.pointer, hot);
    hot.swap(state.hot);
    const auto invalidateMissing = [](const std::vector<CControlUI*>& from, const std::vector<CControlUI*>& in) {
        for (CControlUI* control : from) {
            if (std::ranges::find(in, control) == in.end()) control->Invalidate();
        }
    };
    invalidateMissing(hot, state.hot);
    invalidateMissing(state.hot, hot);
}

CControlUI* CPaintManagerUI::GetHovered() const {
    AssertUiTurn();
    return m_state->hovered;
}

bool CPaintManagerUI::ButtonDown(CDuiPoint point) {
    kernel::UiTurn turn;
    MouseMove(point);
    State& state = *m_state;
    DismissToolTip();
    CControlUI* const scroller = HitTest::ScrollerAround(state.hovered);
    if (scroller && scroller->BeginDrag(HitTest::LocalTo(*scroller, point))) {
        state.dragged = scroller;
        return true;
    }
    CControlUI* const hit = state.hovered;
    state.pressed = HitTest::CanBeClicked(hit) ? hit : nullptr;
    if (!state.pressed) return false;
    SetFocus(state.pressed);
    state.focusShown = state.keyboardLast = false;
    state.pressed->Invalidate();
    UpdateToolTipOwner();
    return true;
}

bool CPaintManagerUI::ButtonUp(CDuiPoint point) {
    kernel::UiTurn turn;
    MouseMove(point);
    if (CControlUI* const dragged = std::exchange(m_state->dragged, nullptr)) {
        dragged->EndDrag();
        return false;
    }
    CControlUI* const pressed = std::exchange(m_state->pressed, nullptr);
    if (pressed) pressed->Invalidate();
    if (!HitTest::CanBeClicked(pressed) || m_state->hovered != pressed) return false;
    SendNotify(pressed, kNotifyClick, point);
    return true;
}

bool CPaintManagerUI::MouseWheel(CDuiPoint point, double notches) {
    kernel::UiTurn turn;
    MouseMove(point);
    CControlUI* const scroller = HitTest::ScrollerAround(m_state->hovered);
    if (!scroller || !scroller->Scroll(ScrollStep::kNotch, notches)) return false;
    DismissToolTip();
    return true;
}

void CPaintManagerUI::SetModal(CControlUI* control) {
    kernel::UiTurn turn;
    State& state = *m_state;
    if (control == state.modal) return;
    if (!state.modal) state.focusedBefore = state.focused;
    state.modal = control;
    const bool shown = state.focusShown;
    if (!control) {
        SetFocus(std::exchange(state.focusedBefore, nullptr));
    } else if (state.focused && !HitTest::LiesIn(state.focused, control)) {
        SetFocus(nullptr);
    }
    state.focusShown = shown && state.focused;
    Layout();
    UpdateHovered();
}

// ---- Keyboard

CControlUI* CPaintManagerUI::GetFocus() const {
    AssertUiTurn();
    return m_state->focused;
}

void CPaintManagerUI::SetFocus(CControlUI* control) {
    AssertUiTurn();
    State& state = *m_state;
    if (state.focused) state.focused->Invalidate();
    state.focused = control;
    state.focusShown = state.keyboardLast = control != nullptr;
    if (control) control->Invalidate();
    UpdateToolTipOwner();
}

void CPaintManagerUI::EnsureVisible(CControlUI& control) {
    AssertUiTurn();
    for (CControlUI* around = control.m_parent; around; around = around->m_parent) {
        around->EnsureVisible(control, m_state->watched);
    }
}

// From the control that has the focus on, also where that one has been hidden since: an update button gives way to the
// stop button beside it.
void CPaintManagerUI::MoveFocus(bool forward) {
    std::vector<CControlUI*> buttons;
    if (CControlUI* const root = InputRoot()) HitTest::Buttons(*root, m_state->focused, true, buttons);
    if (!forward) std::ranges::reverse(buttons);
    const auto at = std::ranges::find(buttons, m_state->focused);
    if (at != buttons.end()) std::ranges::rotate(buttons, at + 1);
    const auto next = std::ranges::find_if(buttons, HitTest::CanBeClicked);
    if (next == buttons.end()) return;
    SetFocus(*next);
    EnsureVisible(**next);
}

bool CPaintManagerUI::Scroll(DuiKey key) {
    CControlUI* const root = InputRoot();
    CControlUI* scroller = HitTest::ScrollerAround(m_state->focused);
    if (!scroller) scroller = HitTest::ScrollerAround(m_state->hovered);
    if (!scroller && root) scroller = HitTest::FirstScroller(*root);
    if (!scroller) return false;
    switch (key) {
        case DuiKey::kUp:
            return scroller->Scroll(ScrollStep::kLine, -1);
        case DuiKey::kDown:
            return scroller->Scroll(ScrollStep::kLine, 1);
        case DuiKey::kPageUp:
            return scroller->Scroll(ScrollStep::kPage, -1);
        case DuiKey::kPageDown:
            return scroller->Scroll(ScrollStep::kPage, 1);
        case DuiKey::kHome:
            return scroller->Scroll(ScrollStep::kWhole, -1);
        case DuiKey::kEnd:
            return scroller->Scroll(ScrollStep::kWhole, 1);
        case DuiKey::kTab:
        case DuiKey::kShiftTab:
        case DuiKey::kEnter:
        case DuiKey::kSpace:
        case DuiKey::kEscape:
            break;
    }
    return false;
}

bool CPaintManagerUI::KeyDown(DuiKey key) {
    kernel::UiTurn turn;
    Layout();
    if (key == DuiKey::kTab || key == DuiKey::kShiftTab) {
        CControlUI* const before = m_state->focused;
        MoveFocus(key == DuiKey::kTab);
        return m_state->focused != before || m_state->focused != nullptr;
    }
    if (key == DuiKey::kEnter || key == DuiKey::kSpace) {
        CControlUI* const focused = m_state->focused;
        if (!HitTest::CanBeClicked(focused) || !HitTest::LiesIn(focused, InputRoot())) return false;
        DismissToolTip();
        m_state->focusShown = m_state->keyboardLast = true;
        focused->Invalidate();
        UpdateToolTipOwner();
        SendNotify(focused, kNotifyClick);
        return true;
    }
    if (key == DuiKey::kEscape) {
        const bool shown = m_state->tip.Shown() != nullptr;
        DismissToolTip();
        CControlUI* const modal = m_state->modal;
        if (shown || !modal || !modal->IsShown()) return shown;
        SendNotify(modal, kNotifyCancel);
        return true;
    }
    return Scroll(key);
}

}  // namespace DuiLib
