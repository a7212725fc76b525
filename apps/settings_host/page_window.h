#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "duilib/duilib.h"
#include "host_channel.h"
#include "module_loader/page_module.h"

namespace settings_host {

// The host's window as a model: a page container that is as high as the height messages say, and the module's page in
// it. All operations take the UI turn themselves unless they say that the caller holds it.
class PageWindow {
public:
    PageWindow(const PageModule& module, HostChannel& channel);
    ~PageWindow();  // closes the page

    void Open();   // CreateSetting
    void Close();  // CloseWnd, then the page's controls go
    bool IsOpen() const { return m_open; }

    // Presses the control as a pointer would: its middle, what lies there, press and release. Returns what went wrong
    // as text, empty when it was clicked.
    std::string Click(std::wstring_view name);

    // Gives the page container the reported height, which is that of the rows, and room for what stands above them;
    // true when that changed something. Under the UI turn.
    bool ApplyContentHeight();

    // Under the UI turn. Null when no control has the name.
    DuiLib::CControlUI* Find(std::wstring_view name);
    DuiLib::CContainerUI& Page() { return *m_page; }

private:
    int HeadingHeight();  // [design px] as laid out; 0 without a list

    const PageModule& m_module;
    HostChannel& m_channel;
    bool m_open = false;
    int m_appliedHeight = 0;  // [design px]
    DuiLib::CNotifyPump m_pump;
    DuiLib::CPaintManagerUI m_manager;
    DuiLib::CContainerUI* m_page;  // owned by the manager's tree
};

// Whether a control and everything around it is visible. Under the UI turn.
bool IsShown(DuiLib::CControlUI* control);

}  // namespace settings_host
