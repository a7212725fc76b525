#include "ipc_page_link.h"

#include <cstring>
#include <functional>
#include <map>
#include <utility>

#include "base/text.h"
#include "channel_client.h"
#include "kernel/code_pages.h"

namespace update_service {
namespace {

// Keys of devices cross the pipe in the system's page.
std::string AnsiFromUtf8(const std::string& text) { return kernel::AnsiFromWide(base::WideFromUtf8(text)); }
std::string Utf8FromAnsi(const std::string& text) { return base::Utf8FromWide(kernel::WideFromAnsi(text)); }

// A note of the service to itself: it comes behind what a page that has come back had asked for meanwhile, and so what
// it brings about is told behind what that has begun. From anybody else it would only be told once more.
constexpr int kReturned = 0x7FFF0001;

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

}  // namespace

IpcPageLink::IpcPageLink(IPCMessageClient& client, Log log)
    : m_client(client), m_log(std::move(log)), m_lines({}, [this](const std::string& message, std::size_t leftOut) {
          m_log(LOG_LEVEL_EVENT, std::to_string(leftOut) + " lines about " + message + " were left out");
      }) {}

void IpcPageLink::SendList(const IpcLife& page, const std::vector<Accessory>& accessories) {
    channel::AccessoryList list;
    for (const Accessory& accessory : accessories) list.push_back(RecordOf(accessory));
    Post({page}, 0, channel::to_page::IPC_MSG_ALL_UPDATE_DATA, list);
}

void IpcPageLink::SendProgress(const Pages& pages, const std::string& deviceKey, int percent) {
    Post(pages, 0, channel::to_page::IPC_MSG_DOWNLOAD_PROCESS, {AnsiFromUtf8(deviceKey), percent});
}

void IpcPageLink::Send(const Pages& pages, const channel::ToPage<channel::DeviceKey>& message,
                       const std::string& deviceKey, std::uint64_t event) {
    Post(pages, event, message, {AnsiFromUtf8(deviceKey)});
}

template <class Payload>
void IpcPageLink::Post(const Pages& pages, std::uint64_t event, const channel::ToPage<Payload>& message,
                       const std::type_identity_t<Payload>& payload) {
    using channel_client::PostResult;
    if (pages.empty()) return;  // to no page would be to every one
    const channel_client::Addressees addressees{pages, event};
    const PostResult result =
        channel_client::PostTo(m_client, addressees, IPC_ENDPOINT_UPDATE_SERVICE, message, payload);
    if (result == PostResult::kPosted) return;
    const std::string name = "message " + std::to_string(message.id);
    if (!m_lines.Spend(name)) return;
    m_log(LOG_LEVEL_EVENT,
          name + (result == PostResult::kRefused ? " cannot be sent" : " is not sent: memory is exhausted"));
}

// All at once, as what pages have asked before the service was there must keep its order.
void ReceiveRequests(IPCMessageClient& client, PageRequests& requests) {
    namespace from_page = channel::from_page;
    const auto keyOf = [](const channel::DeviceKey& payload) { return Utf8FromAnsi(payload.key); };
    const auto page = [] { return CurrentIpcSender().life; };
    std::map<int, std::function<void(TagIPCMessageItem&)>> callbacks;
    const auto receive = [&](const auto& message, auto handler) {
        callbacks.emplace(message.id, channel_client::CallbackOf(message, std::move(handler)));
    };
    receive(from_page::IPC_MSG_DOWNLOAD_START,
            [=, &requests](const auto& payload) { requests.OnStart(page(), keyOf(payload)); });
    receive(from_page::IPC_MSG_DOWNLOAD_PAUSE,
            [=, &requests](const auto& payload) { requests.OnPause(page(), keyOf(payload)); });
    receive(from_page::IPC_MSG_ALL_UPDATE_DATA, [=, &requests](const auto&) { requests.OnReady(page()); });
    callbacks.emplace(kIpcPeerLeft, [=, &requests](TagIPCMessageItem&) { requests.OnLeft(page()); });
    callbacks.emplace(kReturned, [&requests](TagIPCMessageItem& item) {
        IpcLife returned;
        if (item.dataLen != sizeof returned) return;
        std::memcpy(&returned, item.data, sizeof returned);
        requests.OnReturned(returned);
    });
    callbacks.emplace(kIpcPeerArrived, [=, &client](TagIPCMessageItem& item) {
        const bool mayHaveMissed = item.dataLen == 1 && *item.data != 0;
        if (!mayHaveMissed) return;
        IpcLife returned = page();
        TagIPCMessageItem note;
        note.destId = note.sourceId = IPC_ENDPOINT_UPDATE_SERVICE;
        note.msgId = kReturned;
        note.data = reinterpret_cast<char*>(&returned);
        note.dataLen = sizeof returned;
        client.PostIPCMessage(note);
    });
    client.RegisterMessageCallbacks(callbacks);
}

}  // namespace update_service
