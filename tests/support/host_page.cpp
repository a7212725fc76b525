#include "host_page.h"

#include "kernel/ui_turn.h"

HostPage::HostPage() : m_parent(new DuiLib::CVerticalLayoutUI), m_manager(new DuiLib::CPaintManagerUI) {
    const kernel::UiTurn turn;
    auto* const root = new DuiLib::CVerticalLayoutUI;
    root->Add(m_parent);
    m_manager->AttachRoot(root);
    m_manager->SetClientSize({1184, 20000});
    m_manager->AddNotifyPump(&m_pump);
}

HostPage::~HostPage() = default;

bool HostPage::Notify(std::wstring_view control, std::wstring_view type) {
    DuiLib::CControlUI* const sender = Find(control);
    if (sender == nullptr) return false;
    m_manager->SendNotify(sender, type);
    return true;
}
