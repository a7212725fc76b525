#pragma once

#include <memory>

#include "kernel/ui_turn.h"
#include "page_fixture.h"
#include "update_list/accessories_update_wnd.h"
#include "update_list/row_list.h"

namespace DuiLib {

// What of a list window nothing else can see or reach.
struct PageInspector {
    static const auto& Rows(const AccessoriesUpdateWnd& window) { return window.m_rows; }
    static auto& Lines(AccessoriesUpdateWnd& window) { return window.m_lines; }
    static int TotalHeight(const AccessoriesUpdateWnd& window) { return window.m_totalHeight; }
    static int FirmwareNum(const AccessoriesUpdateWnd& window) { return window.m_firmwareNum; }
    static std::wstring VirtualWndName(const AccessoriesUpdateWnd& window) { return window.m_virtualWndName; }
    static int BuildIndex(const AccessoriesUpdateWnd& window) { return window.m_buildIndex; }
    static void ForgetParent(AccessoriesUpdateWnd& window) { window.m_parent = nullptr; }
    static void ChangeHeight(AccessoriesUpdateWnd& window, int height, bool grow, bool extra) {
        window.OnRowHeightChanged(height, grow, extra);
    }
    static void FinishRow(AccessoriesUpdateWnd& window) { window.OnRowFinished(); }
    static IPCMessageClient* Client(const AccessoriesUpdateWnd& window) { return window.m_objIPCClientPtr; }
};

}  // namespace DuiLib

// A list window in a host's page.
class PageWindowFixture : public PageFixture {
protected:
    ~PageWindowFixture() override {
        m_page.Discard();
        window.reset();
    }

    void MakeWindow() {
        const kernel::UiTurn turn;
        window = std::make_unique<DuiLib::AccessoriesUpdateWnd>();
        window->InitItemLayout(m_page.Manager(), m_page.Pump(), m_page.Parent());
    }

    std::unique_ptr<DuiLib::AccessoriesUpdateWnd> window;
};
