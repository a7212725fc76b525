#include <algorithm>
#include <new>

#include "ipc_client/ipc_diagnostics.h"
#include "ipc_client/ipc_message_client.h"
#include "seam.h"

class IPCMessageClient::State {
public:
    const int endpointId;
    const bool receives;
};

namespace {

void Record(seam::Kind kind, int number = 0) {
    seam::Event event{};
    event.kind = kind;
    event.number = number;
    seam::Get().events.push_back(std::move(event));
}

bool Forget(const void* client, std::vector<seam::Callback>& callbacks) {
    return std::erase_if(callbacks, [client](const seam::Callback& entry) { return entry.client == client; }) != 0;
}

}  // namespace

IPCMessageClient::IPCMessageClient(int endpointId, bool receives, bool exclusive, const std::wstring& pipeName)
    : m_state(new State{endpointId, receives}) {
    if (seam::Get().clientThrows) throw std::bad_alloc();
    seam::Get().clients.push_back({endpointId, receives, exclusive, pipeName});
    Record(seam::Kind::kClientCreated);
}

IPCMessageClient::~IPCMessageClient() {
    for (auto& [msgId, callbacks] : seam::Get().callbacks) Forget(this, callbacks);
    Record(seam::Kind::kClientDestroyed);
}

void IPCMessageClient::RegisterMessageCallback(int msgId, std::function<void(TagIPCMessageItem&)> callback) {
    Record(seam::Kind::kRegister, msgId);
    if (!m_state->receives) return;
    std::vector<seam::Callback>& callbacks = seam::Get().callbacks[msgId];
    const auto earlier = std::find_if(callbacks.begin(), callbacks.end(),
                                      [this](const seam::Callback& entry) { return entry.client == this; });
    if (earlier != callbacks.end()) {
        earlier->function = std::move(callback);
    } else {
        callbacks.push_back({this, m_state->endpointId, std::move(callback)});
    }
}

bool IPCMessageClient::UnRegisterMessageCallback(int msgId) {
    Record(seam::Kind::kUnregister, msgId);
    return Forget(this, seam::Get().callbacks[msgId]);
}

bool IPCMessageClient::UnRegisterMessageCallbackAll() {
    Record(seam::Kind::kUnregisterAll);
    bool any = false;
    for (auto& [msgId, callbacks] : seam::Get().callbacks) any = Forget(this, callbacks) || any;
    return any;
}

bool IPCMessageClient::PostIPCMessage(const TagIPCMessageItem& item) {
    seam::Event event{};
    event.kind = seam::Kind::kPost;
    event.item = item;
    if (item.data != nullptr) event.payload.assign(item.data, static_cast<std::size_t>(item.dataLen));
    seam::Get().events.push_back(std::move(event));
    if (seam::Get().onPost) seam::Get().onPost(item.msgId);
    return seam::Get().postResult;
}

// ---- For hosts: the seam records the messages, and there is no log

void SetIpcLogSink(std::function<void(int level, const std::string& line)>) {}
void SetIpcTrace(std::function<void(IpcTraceEvent event, const TagIPCMessageItem& item)>) {}
bool IsPipeConnected(const std::wstring&) { return seam::Get().connected; }
void SetPipeConnectionSink(std::function<void()>) {}
