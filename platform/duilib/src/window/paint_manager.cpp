#include "duilib/paint_manager.h"

#include <algorithm>
#include <utility>

#include "duilib/container.h"
#include "foundation/diagnostics.h"
#include "foundation/geometry_math.h"
#include "kernel/ui_turn.h"
#include "window/paint_manager_state.h"

namespace DuiLib {

CPaintManagerUI::CPaintManagerUI() : m_state(std::make_shared<State>(*this)) {
    kernel::UiTurn turn;
    m_state->layoutBasis.emplace([this] { LayOutAgain(); });
}

CPaintManagerUI::~CPaintManagerUI() {
    kernel::UiTurn turn;
    SetWakeUp({});  // nobody is to paint this any more
    AttachRoot(nullptr);
    m_state->pumps.clear();
    m_state->layoutBasis.reset();
}

// ---- The tree

void CPaintManagerUI::AttachRoot(CControlUI* root) {
    AssertUiTurn();
    if (root == m_state->root || (root && (root->m_parent || root->m_window))) return;
    delete m_state->root;
    m_state->root = root;
    InvalidateAll();
    if (!root) return;
    root->AttachTree(*m_state);
    root->NeedLayout();
}

CControlUI* CPaintManagerUI::GetRoot() const {
    AssertUiTurn();
    return m_state->root;
}

CControlUI* CPaintManagerUI::FindControl(std::wstring_view name) const {
    AssertUiTurn();
    return m_state->names.Find(name);
}

void CPaintManagerUI::Forget(CControlUI& control) {
    State& state = *m_state;
    for (CControlUI** held : {&state.root, &state.hovered, &state.pressed, &state.focused, &state.modal,
                              &state.focusedBefore, &state.dragged}) {
        if (*held == &control) *held = nullptr;
    }
    std::erase(state.hot, &control);
    std::erase(state.moving, &control);
    if (state.tip.Owner() == &control) state.tip.Over(nullptr);
    for (TNotifyUI* message : state.underWay) {
        if (message->sender == &control) message->sender = nullptr;
    }
}

PaintDC* CPaintManagerUI::GetPaintDC() const {
    AssertUiTurn();
    return &m_state->dc;
}

// ---- Layout

void CPaintManagerUI::SetClientSize(CDuiSize size) {
    AssertUiTurn();
    m_state->clientSize = {std::clamp(size.cx, 0, kMaxExtent), std::clamp(size.cy, 0, kMaxExtent)};
    NeedLayout();
    InvalidateAll();
}

CDuiSize CPaintManagerUI::GetClientSize() const {
    AssertUiTurn();
    return m_state->clientSize;
}

void CPaintManagerUI::NeedLayout() {
    AssertUiTurn();
    if (m_state->root) m_state->root->NeedLayout();
}

void CPaintManagerUI::Layout() {
    kernel::UiTurn turn;
    CControlUI* const root = m_state->root;
    if (!root || !root->m_visible || !root->m_arrangePending) return;
    const int width = root->m_fixedWidth ? root->GetFixedWidth() : m_state->clientSize.cx;
    const int height = root->m_fixedHeight ? root->GetFixedHeight() : m_state->clientSize.cy;
    root->Arrange({0, 0, width, height});
    m_state->laidOut = true;
}

void CPaintManagerUI::LayOutAgain() {
    if (m_state->root) m_state->root->ForgetSizesOfTree();
    InvalidateAll();
}

// ---- Notifications

void CPaintManagerUI::AddNotifyPump(CNotifyPump* pump) {
    AssertUiTurn();
    if (pump && std::ranges::find(m_state->pumps, pump) == m_state->pumps.end()) m_state->pumps.push_back(pump);
}

void CPaintManagerUI::RemoveNotifyPump(CNotifyPump* pump) {
    AssertUiTurn();
    std::erase(m_state->pumps, pump);
}

// A handler may remove the sender, take pumps away, destroy this window, or give the turn up for a while in which
// another thread does so: only `state` and the copies are used after the first one.
void CPaintManagerUI::SendNotify(CControlUI* sender, std::wstring_view type, CDuiPoint mouse) {
    AssertUiTurn();
    const std::shared_ptr<State> state = m_state;
    TNotifyUI message{CDuiString(type), sender, {}, mouse};
    for (const CControlUI* control = sender; control && message.virtualWnd.IsEmpty(); control = control->m_parent) {
        message.virtualWnd = control->GetVirtualWnd();
    }
    const std::vector<CNotifyPump*> pumps = state->pumps;
    state->underWay.push_back(&message);
    struct Done {
        State& state;
        TNotifyUI* message;
        ~Done() { std::erase(state.underWay, message); }
    } done{*state, &message};
    for (CNotifyPump* pump : pumps) {
        if (std::ranges::find(state->pumps, pump) != state->pumps.end()) pump->NotifyPump(message);
    }
}

}  // namespace DuiLib
