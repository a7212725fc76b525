#include "service_messages.h"

#include "ipc/channel.h"
#include "ipc/record_codec.h"
#include "kernel/ui_turn.h"
#include "seam.h"

namespace {

template <class Record>
std::string Encoded(const Record& record) {
    TagIPCMessageItem item;
    IPCDataIO writer(&item, 64, false, false);
    WriteRecord(writer, record);
    return {item.data, writer.Position()};
}

void Deliver(int message, std::string payload) {
    const kernel::UiTurn turn;
    seam::Get().Deliver(message, std::move(payload));
}

}  // namespace

void DeliverList(const std::vector<AccessoryVersionDataInfo>& list) { Deliver(IPC_MSG_ALL_UPDATE_DATA, Encoded(list)); }

void DeliverProgress(const std::string& key, int percent) {
    Deliver(IPC_MSG_DOWNLOAD_PROCESS, Encoded(PkgDownloadProcess{key, percent}));
}

void DeliverFinish(const std::string& key) { Deliver(IPC_MSG_PKG_FINISH, key + '\0'); }

void DeliverFail(const std::string& key) { Deliver(IPC_MSG_PKG_FAIL, key + '\0'); }
