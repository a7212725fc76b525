#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "channel/messages.h"
#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/notify_pump.h"
#include "duilib/paint_manager.h"
#include "firmware_item/accessories_firware_wnd.h"
#include "ipc/ipc_post.h"
#include "ipc/ipc_server.h"

namespace DuiLib {

// The accessory page: builds its layout into the host's container, takes the first accessory list of the update
// service, makes one row a device with separators between them, keeps the host informed of the content height, and
// routes progress, end and failure messages to the rows by device key.
//
// Created on the host's UI thread and destroyed there; its receivers run on the client's delivery thread. Everything
// runs under the UI turn. The host's control tree owns the controls; the rows are left to the process's end.
//
// ResigterAccessMessageCallBacks, SendInitFinshed and m_ipcReciever are misspelt on purpose: log lines carry the names.
class AccessoriesUpdateWnd final : public CNotifyPump {
public:
    AccessoriesUpdateWnd() = default;

    // Unregisters every callback before anything is released, so that no message reaches a half-destroyed window.
    // Leaves the page's controls and the registration with the host's pump to the host.
    ~AccessoriesUpdateWnd();

    const DUI_MSGMAP* GetMessageMap() const override;
    void OnClick(TNotifyUI& message) override;  // the page itself has nothing to click

    // Once per window. Wires the IPC side in any case; builds the page and tells the service that it is ready when all
    // three arguments are there. None of them is owned.
    void InitItemLayout(CPaintManagerUI* paintManager, CNotifyPump* notifyPump, CContainerUI* parent);

    // Makes client, handle and registry, and registers the receivers. A registry that was there goes; a client that was
    // there is dropped, not deleted, on purpose.
    void ResigterAccessMessageCallBacks();

    // Receivers.
    void RecAllUpdateData(std::vector<AccessoryVersionDataInfo>& list);
    void RecPkgDownloadProcess(PkgDownloadProcess& record);
    void RecPkgFinish(TagIPCMessageItem& item);
    void RecPkgFail(TagIPCMessageItem& item);

private:
    friend struct PageInspector;   // tests see and call what nothing else can
    friend struct PageFieldOrder;  // compile-time check of the field order

    // What the rows call back.
    void OnRowHeightChanged(int height, bool grow, bool extra);  // [design px]
    void OnRowFinished();

    void SendInitFinshed();
    void InitRows(std::vector<AccessoryVersionDataInfo>& list);
    AccessoriesFirwareWnd* CreateRow(FirmwareItemDesc& desc);
    void AddLine(const std::wstring& deviceKey, int index, CContainerUI* list);
    void RefreshRows();
    void PostContentHeight(int height);
    AccessoriesFirwareWnd* FindRow(const std::string& deviceKey) const;
    void RegisterReceivers();
    template <class Payload>
    void AddReceiver(const channel::ToPage<Payload>& message, void (AccessoriesUpdateWnd::*handler)(Payload&));
    void AddReceiver(const channel::ToPage<channel::DeviceKey>& message,
                     std::function<void(TagIPCMessageItem&)> handler);

    CControlUI* m_root = nullptr;
    CPaintManagerUI* m_paintManager = nullptr;
    CNotifyPump* m_notifyPump = nullptr;
    IPCMessageClient* m_objIPCClientPtr = nullptr;  // owned
    IPCClientHandle* m_ipcClient = nullptr;         // never released, on purpose
    std::unique_ptr<IPCServer> m_ipcReciever;
    std::wstring m_virtualWndName;
    int m_buildIndex = 0;
    CContainerUI* m_parent = nullptr;
    CDuiString m_bindText;                                 // not used
    CDuiString m_bindValue;                                // not used
    std::map<std::string, AccessoriesFirwareWnd*> m_rows;  // by device key; not owned
    std::map<std::string, CLabelUI*> m_lines;              // the separator below each row
    bool m_listReceived = false;
    int m_totalHeight = 0;  // [design px]
    int m_firmwareNum = 0;  // rows still shown
};

}  // namespace DuiLib
