// What the page is sent: its receivers, and progress, end and failure messages on their way to the row of the device.
#include <functional>
#include <new>
#include <utility>

#include "channel/messages.h"
#include "support/log_line.h"
#include "update_list/accessories_update_wnd.h"

namespace DuiLib {

namespace {

// A raw payload is a text up to its first zero byte; dataLen is not looked at. No payload is the empty text.
std::string PayloadText(const TagIPCMessageItem& item) { return item.data == nullptr ? "" : item.data; }

}  // namespace

void AccessoriesUpdateWnd::RegisterReceivers() {
    namespace to_page = channel::to_page;
    AddReceiver(to_page::IPC_MSG_ALL_UPDATE_DATA, &AccessoriesUpdateWnd::RecAllUpdateData);
    AddReceiver(to_page::IPC_MSG_DOWNLOAD_PROCESS, &AccessoriesUpdateWnd::RecPkgDownloadProcess);
    AddReceiver(to_page::IPC_MSG_PKG_FINISH, [this](TagIPCMessageItem& item) { RecPkgFinish(item); });
    AddReceiver(to_page::IPC_MSG_PKG_FAIL, [this](TagIPCMessageItem& item) { RecPkgFail(item); });
}

template <class Payload>
void AccessoriesUpdateWnd::AddReceiver(const channel::ToPage<Payload>& message,
                                       void (AccessoriesUpdateWnd::*handler)(Payload&)) {
    auto* const proc = new (std::nothrow) IPCServerProc<AccessoriesUpdateWnd, Payload&>(message.id, this, handler);
    if (m_ipcReciever->Register(proc) < 0) delete proc;
}

// Not through the registry: that unregisters each of its receivers by itself when the page ends, and its cursor minds a
// payload's length.
void AccessoriesUpdateWnd::AddReceiver(const channel::ToPage<channel::DeviceKey>& message,
                                       std::function<void(TagIPCMessageItem&)> handler) {
    m_objIPCClientPtr->RegisterMessageCallback(message.id, std::move(handler));
}

AccessoriesFirwareWnd* AccessoriesUpdateWnd::FindRow(const std::string& deviceKey) const {
    const auto found = m_rows.find(deviceKey);
    return found == m_rows.end() ? nullptr : found->second;
}

void AccessoriesUpdateWnd::RecPkgDownloadProcess(PkgDownloadProcess& record) {
    LogLine(kLogDetail) << "AccessoriesUpdateWnd RecPkgDownloadProcess enter";
    if (AccessoriesFirwareWnd* const row = FindRow(record.deviceKey)) row->ShowDownloadProgress(record.progress);
}

void AccessoriesUpdateWnd::RecPkgFinish(TagIPCMessageItem& item) {
    if (m_paintManager == nullptr) return;
    const std::string key = PayloadText(item);
    if (const auto line = m_lines.find(key); line != m_lines.end()) {
        if (line->second == nullptr) return;
        line->second->SetVisible(false);
    }
    if (AccessoriesFirwareWnd* const row = FindRow(key)) row->SetFinishProcess();
}

void AccessoriesUpdateWnd::RecPkgFail(TagIPCMessageItem& item) {
    LogLine(kLogEvent) << "AccessoriesUpdateWnd RecPkgFail enter";
    if (AccessoriesFirwareWnd* const row = FindRow(PayloadText(item))) row->SetRetryBtn();
}

}  // namespace DuiLib
