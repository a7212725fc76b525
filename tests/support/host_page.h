#pragma once

#include <memory>
#include <string_view>

#include "duilib/duilib.h"

// The host's side of a test: a window's tree with a container for the page, and the pump that it passes on.
class HostPage {
public:
    HostPage();
    ~HostPage();

    DuiLib::CPaintManagerUI* Manager() { return m_manager.get(); }
    DuiLib::CNotifyPump* Pump() { return &m_pump; }
    DuiLib::CContainerUI* Parent() { return m_parent; }
    DuiLib::CControlUI* Find(std::wstring_view name) { return m_manager->FindControl(name); }

    // Sends a notification with that control as sender, through the pump; false when no control has the name.
    bool Notify(std::wstring_view control, std::wstring_view type = DuiLib::kNotifyClick);

    void Discard() { m_parent->RemoveAll(); }

private:
    DuiLib::CNotifyPump m_pump;
    DuiLib::CContainerUI* m_parent;  // owned by the manager's tree
    std::unique_ptr<DuiLib::CPaintManagerUI> m_manager;
};
