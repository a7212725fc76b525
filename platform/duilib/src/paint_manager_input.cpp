// What input does to the model of a window: where it lands, and which notification it becomes.
#include <algorithm>
#include <ranges>
#include <utility>

#include "duilib/container.h"
#include "duilib/paint_manager.h"
#include "kernel/ui_turn.h"
#include "paint_manager_state.h"

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

    static void Buttons(CControlUI& control, std::vector<CControlUI*>& buttons) {
        if (!control.m_visible || !control.m_enabled) return;
        if (control.TakesPointer()) buttons.push_back(&control);
        for (CControlUI* child : control.Children()) Buttons(*child, buttons);
    }

    static bool CanBeClicked(const CControlUI* control) {
        if (!control || !control->TakesPointer()) return false;
        for (; control; control = control->m_parent) {
            if (!control->m_visible || !control->m_enabled) return false;
        }
        return true;
    }
};

CControlUI* CPaintManagerUI::FindControl(CDuiPoint point) {
    Layout();
    CControlUI* const root = m_state->root;
    if (!root) return nullptr;
    CControlUI* const button = HitTest::Button(*root, point);
    return button ? button : HitTest::Innermost(*root, point);
}

// ---- Pointer

void CPaintManagerUI::MouseMove(CDuiPoint point) {
    kernel::UiTurn turn;
    m_state->hovered = FindControl(point);
}

CControlUI* CPaintManagerUI::GetHovered() const { return m_state->hovered; }

bool CPaintManagerUI::ButtonDown(CDuiPoint point) {
    kernel::UiTurn turn;
    MouseMove(point);
    CControlUI* const hit = m_state->hovered;
    m_state->pressed = HitTest::CanBeClicked(hit) ? hit : nullptr;
    if (m_state->pressed) m_state->focused = m_state->pressed;
    return m_state->pressed != nullptr;
}

bool CPaintManagerUI::ButtonUp(CDuiPoint point) {
    kernel::UiTurn turn;
    MouseMove(point);
    CControlUI* const pressed = std::exchange(m_state->pressed, nullptr);
    if (!HitTest::CanBeClicked(pressed) || m_state->hovered != pressed) return false;
    SendNotify(pressed, kNotifyClick, point);
    return true;
}

// ---- Keyboard

CControlUI* CPaintManagerUI::GetFocus() const { return m_state->focused; }

bool CPaintManagerUI::KeyDown(DuiKey key) {
    kernel::UiTurn turn;
    if (key == DuiKey::kEnter || key == DuiKey::kSpace) {
        if (!HitTest::CanBeClicked(m_state->focused)) return false;
        SendNotify(m_state->focused, kNotifyClick);
        return true;
    }
    std::vector<CControlUI*> buttons;
    if (m_state->root) HitTest::Buttons(*m_state->root, buttons);
    if (buttons.empty()) return false;
    const auto count = static_cast<std::ptrdiff_t>(buttons.size());
    const auto at = std::ranges::find(buttons, m_state->focused) - buttons.begin();  // `count` when not among them
    const bool forward = key == DuiKey::kTab;
    const auto next = at == count ? (forward ? 0 : count - 1) : (at + (forward ? 1 : count - 1)) % count;
    m_state->focused = buttons[static_cast<std::size_t>(next)];
    return true;
}

}  // namespace DuiLib
