#include "ipc_page_link.h"

#include "base/text.h"
#include "ipc/channel.h"
#include "ipc/ipc_data_io.h"
#include "ipc/record_codec.h"
#include "ipc/records.h"
#include "kernel/ansi_text.h"

namespace update_service {
namespace {

constexpr std::uint32_t kSmallBlock = 64;         // [bytes] for one record
constexpr std::uint32_t kLargeBlock = 64 * 1024;  // [bytes] for a list

// Keys of devices cross the pipe in the system's page.
std::string AnsiFromUtf8(const std::string& text) { return kernel::AnsiFromWide(base::WideFromUtf8(text)); }
std::string Utf8FromAnsi(const std::string& text) { return base::Utf8FromWide(kernel::WideFromAnsi(text)); }

AccessoryVersionDataInfo RecordOf(const Accessory& accessory) {
    AccessoryVersionDataInfo record;
    record.deviceKey = AnsiFromUtf8(accessory.deviceKey);
    record.modelId = base::WideFromUtf8(accessory.modelId);
    record.imagePath = base::WideFromUtf8(accessory.image);
    record.version = base::WideFromUtf8(accessory.version);
    for (const std::string& line : accessory.description) record.descLines.push_back(base::WideFromUtf8(line));
    record.isDriver = accessory.isDriver;
    return record;
}

// Counts what a record takes on the wire; holds nothing.
class WireSize final : public IIPCDataIO {
public:
    std::uint32_t Reserve(std::uint32_t n) override { return n; }
    std::uint32_t WriteUInt32(std::uint32_t value) override { return Write(&value, 4); }
    std::uint32_t WriteUInt8(std::uint8_t value) override { return Write(&value, 1); }
    std::uint32_t Write(const void*, std::uint32_t n) override {
        m_bytes += n;
        return n;
    }
    std::uint32_t ReadUInt32(std::uint32_t*) override { return 0; }
    std::uint32_t ReadUInt8(std::uint8_t*) override { return 0; }
    std::uint32_t Read(void*, std::uint32_t) override { return 0; }

    std::size_t Bytes() const { return m_bytes; }

private:
    std::size_t m_bytes = 0;
};

// The payload up to its first zero byte.
std::string KeyOf(const TagIPCMessageItem& item) {
    if (!item.data || item.dataLen <= 0) return {};
    const std::string payload(item.data, static_cast<std::size_t>(item.dataLen));
    return Utf8FromAnsi(payload.substr(0, payload.find('\0')));
}

}  // namespace

IpcPageLink::IpcPageLink(IPCMessageClient& client, Log log) : m_client(client), m_log(std::move(log)) {}

void IpcPageLink::SendList(const std::vector<Accessory>& accessories) {
    std::vector<AccessoryVersionDataInfo> list;
    for (const Accessory& accessory : accessories) list.push_back(RecordOf(accessory));
    PostRecord(IPC_MSG_ALL_UPDATE_DATA, list, kLargeBlock);
}

void IpcPageLink::SendProgress(const std::string& deviceKey, int percent) {
    PostRecord(IPC_MSG_DOWNLOAD_PROCESS, PkgDownloadProcess{AnsiFromUtf8(deviceKey), percent}, kSmallBlock);
}

void IpcPageLink::SendEnded(const std::string& deviceKey) { PostKey(IPC_MSG_PKG_FINISH, deviceKey); }

void IpcPageLink::SendFailed(const std::string& deviceKey) { PostKey(IPC_MSG_PKG_FAIL, deviceKey); }

template <typename Record>
void IpcPageLink::PostRecord(int msgId, const Record& record, std::uint32_t blockSize) {
    WireSize size;
    WriteRecord(size, record);
    TagIPCMessageItem item;
    IPCDataIO writer(&item, blockSize, false, false);
    WriteRecord(writer, record);
    if (writer.Position() != size.Bytes()) {  // a field that found no memory is not there, and the rest has moved up
        m_log(LOG_LEVEL_EVENT, "message " + std::to_string(msgId) + " is not sent: memory is exhausted");
        return;
    }
    item.dataLen = static_cast<std::int32_t>(writer.Position());  // without what the last block has left over
    Post(item, msgId);
}

void IpcPageLink::PostKey(int msgId, const std::string& deviceKey) {
    std::string key = AnsiFromUtf8(deviceKey);
    TagIPCMessageItem item;
    item.data = key.data();
    item.dataLen = static_cast<std::int32_t>(key.size() + 1);  // the zero travels along
    Post(item, msgId);
}

void IpcPageLink::Post(TagIPCMessageItem& item, int msgId) {
    item.destId = IPC_ENDPOINT_PLUGIN;
    item.sourceId = IPC_ENDPOINT_UPDATE_SERVICE;
    item.msgId = msgId;
    if (!m_client.PostIPCMessage(item)) {
        m_log(LOG_LEVEL_EVENT, "message " + std::to_string(msgId) + " cannot be sent");
    }
}

void ReceiveRequests(IPCMessageClient& client, PageRequests& requests) {
    client.RegisterMessageCallback(IPC_MSG_DOWNLOAD_START,
                                   [&requests](TagIPCMessageItem& item) { requests.OnStart(KeyOf(item)); });
    client.RegisterMessageCallback(IPC_MSG_DOWNLOAD_PAUSE,
                                   [&requests](TagIPCMessageItem& item) { requests.OnPause(KeyOf(item)); });
    client.RegisterMessageCallback(IPC_MSG_ALL_UPDATE_DATA, [&requests](TagIPCMessageItem&) { requests.OnReady(); });
}

}  // namespace update_service
