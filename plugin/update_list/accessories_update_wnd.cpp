#include "update_list/accessories_update_wnd.h"

#include <type_traits>

#include "duilib/dialog_builder.h"
#include "ipc/field_order.h"
#include "support/log_line.h"
#include "support/page_parts.h"

namespace DuiLib {

static_assert(!std::has_virtual_destructor_v<AccessoriesUpdateWnd>);

struct PageFieldOrder {
    static_assert(
        InOrder({offsetof(AccessoriesUpdateWnd, m_root), offsetof(AccessoriesUpdateWnd, m_paintManager),
                 offsetof(AccessoriesUpdateWnd, m_notifyPump), offsetof(AccessoriesUpdateWnd, m_objIPCClientPtr),
                 offsetof(AccessoriesUpdateWnd, m_ipcClient), offsetof(AccessoriesUpdateWnd, m_ipcReciever),
                 offsetof(AccessoriesUpdateWnd, m_virtualWndName), offsetof(AccessoriesUpdateWnd, m_buildIndex),
                 offsetof(AccessoriesUpdateWnd, m_parent), offsetof(AccessoriesUpdateWnd, m_bindText),
                 offsetof(AccessoriesUpdateWnd, m_bindValue), offsetof(AccessoriesUpdateWnd, m_rows),
                 offsetof(AccessoriesUpdateWnd, m_lines), offsetof(AccessoriesUpdateWnd, m_listReceived),
                 offsetof(AccessoriesUpdateWnd, m_totalHeight), offsetof(AccessoriesUpdateWnd, m_firmwareNum)}));
};

namespace {

constexpr const wchar_t* kPageLayout = L"../components/brindle/res/layout/Tolvane.xml";

// In the order of PageWiring; misspelt, and with two blanks, on purpose.
constexpr const char* kUnwired[] = {
    "InitIpcCallBack new objIPCClientPtr failed,  objIPCClientPtr is nullptr.",
    "InitIpcCallBack new ipcClient failed, ipcClient is nullptr.",
    "InitIpcCallBack new ipcReciever failed, ipcReciever is nullptr.",
};

}  // namespace

AccessoriesUpdateWnd::~AccessoriesUpdateWnd() {
    if (m_ipcReciever) m_ipcReciever->UnregisterAll();
    if (m_objIPCClientPtr != nullptr) {
        m_objIPCClientPtr->UnRegisterMessageCallbackAll();
        delete m_objIPCClientPtr;
        m_objIPCClientPtr = nullptr;
    }
}

const DUI_MSGMAP* AccessoriesUpdateWnd::GetMessageMap() const {
    static constexpr DUI_MSGMAP_ENTRY kEntries[] = {{nullptr, nullptr, nullptr}};
    static const DUI_MSGMAP kMap{&CNotifyPump::s_messageMap, kEntries};  // the base may be in another module
    return &kMap;
}

void AccessoriesUpdateWnd::OnClick(TNotifyUI&) {}

void AccessoriesUpdateWnd::InitItemLayout(CPaintManagerUI* paintManager, CNotifyPump* notifyPump,
                                          CContainerUI* parent) {
    LogLine(kLogDetail) << "InitItemLayout enter";
    ResigterAccessMessageCallBacks();
    m_totalHeight = 0;
    m_buildIndex = 0;
    m_virtualWndName.clear();
    if (paintManager == nullptr || notifyPump == nullptr || parent == nullptr) return;

    CDialogBuilder builder;
    m_root = builder.Create(kPageLayout);
    if (m_root == nullptr) {
        LogLine(kLogEvent) << "update item fail to create control";
        return;
    }
    m_paintManager = paintManager;
    m_notifyPump = notifyPump;
    m_virtualWndName = AddToPage(this, m_root, notifyPump, parent);
    m_parent = parent;
    SendInitFinshed();
}

void AccessoriesUpdateWnd::ResigterAccessMessageCallBacks() {
    const PageWiring wiring = WirePage(m_objIPCClientPtr, m_ipcClient, m_ipcReciever);
    if (wiring == PageWiring::kComplete) return RegisterReceivers();
    LogLine(kLogEvent) << kUnwired[static_cast<std::size_t>(wiring)];
}

void AccessoriesUpdateWnd::SendInitFinshed() {
    if (m_objIPCClientPtr == nullptr) return;
    const bool sent = Post(m_objIPCClientPtr, channel::from_page::IPC_MSG_ALL_UPDATE_DATA, {});
    // The text speaks of a package although the message says that the page is ready: kept as it is.
    LogLine(kLogEvent) << "Send DownloadPkg Finished, ret = " << sent;
}

}  // namespace DuiLib
