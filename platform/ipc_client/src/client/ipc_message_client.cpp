#include "ipc_client/ipc_message_client.h"

#include <map>
#include <new>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/mutex.h"
#include "base/reason.h"
#include "client/connection.h"
#include "client/receiver.h"
#include "diagnostics.h"
#include "kernel/ui_turn.h"

using ipc_client::Connection;
using ipc_client::Receiver;

// Small, because a page opens one client a row: the receiving half is made for the first callback.
class IPCMessageClient::State {
public:
    State(int endpoint, bool mayReceive, std::shared_ptr<Connection> shared)
        : endpointId(endpoint), receives(mayReceive), connection(std::move(shared)) {}

    ~State() {
        const base::MutexLock lock(registration);
        if (receiver) connection->HasRoom(*receiver);
        receiver.reset();
    }

    // Makes the receiver for the first callback; false, with a log line, when its thread cannot be started.
    bool EnsureReceiver() BASE_REQUIRES(registration) {
        if (receiver) return true;
        try {
            receiver = std::make_unique<Receiver>(endpointId, *connection);
            return true;
        } catch (const std::system_error& error) {
            ipc_client::Log(kIpcLogEvent, "no delivery thread for a client: " + base::Reason(error));
            return false;
        }
    }

    const int endpointId;
    const bool receives;
    const std::shared_ptr<Connection> connection;
    base::Mutex registration;  // keeps callbacks and the connection's routes in step
    std::unique_ptr<Receiver> receiver BASE_GUARDED_BY(registration);  // set once
};

namespace {

std::shared_ptr<Connection> ConnectionFor(const std::wstring& pipeName) {
    try {
        return Connection::ForPipe(pipeName);
    } catch (const std::system_error& error) {
        ipc_client::Log(kIpcLogEvent, "no connection for a client: " + base::Reason(error));
        throw std::bad_alloc();
    }
}

}  // namespace

IPCMessageClient::IPCMessageClient(int endpointId, bool receives, bool, const std::wstring& pipeName)
    : m_state(std::make_shared<State>(endpointId, receives, ConnectionFor(pipeName))) {}

IPCMessageClient::~IPCMessageClient() {
    UnRegisterMessageCallbackAll();
    const kernel::UiTurnPause pause;  // the last client waits for what was posted to be written
    m_state.reset();
}

void IPCMessageClient::RegisterMessageCallback(int msgId, std::function<void(TagIPCMessageItem&)> callback) {
    std::map<int, std::function<void(TagIPCMessageItem&)>> callbacks;
    callbacks.emplace(msgId, std::move(callback));
    RegisterMessageCallbacks(callbacks);
}

void IPCMessageClient::RegisterMessageCallbacks(
    const std::map<int, std::function<void(TagIPCMessageItem&)>>& callbacks) {
    if (!m_state->receives) {
        for (const auto& [msgId, callback] : callbacks) {
            ipc_client::Log(kIpcLogEvent, "a client that does not receive was given a callback for " +
                                              ipc_client::Describe({m_state->endpointId, msgId}));
        }
        return;
    }
    std::vector<Receiver::Held> replaced;  // go after the lock
    std::vector<int> msgIds;
    const base::MutexLock lock(m_state->registration);
    if (!m_state->EnsureReceiver()) return;
    for (const auto& [msgId, callback] : callbacks) {
        replaced.push_back(m_state->receiver->Set(msgId, callback));
        msgIds.push_back(msgId);
    }
    m_state->connection->AddReceiver(*m_state->receiver, msgIds);
}

bool IPCMessageClient::UnRegisterMessageCallback(int msgId) {
    Receiver* receiver = nullptr;
    Receiver::Held removed;
    {
        const base::MutexLock lock(m_state->registration);
        receiver = m_state->receiver.get();
        if (receiver == nullptr) return false;
        removed = receiver->Remove(msgId);
        if (removed) m_state->connection->RemoveReceiver(*receiver, {msgId});
    }
    const bool wasThere = std::exchange(removed, nullptr) != nullptr;
    receiver->WaitUntilDone(msgId);  // another thread, or the callback itself, may have removed it
    return wasThere;
}

bool IPCMessageClient::UnRegisterMessageCallbackAll() {
    Receiver* receiver = nullptr;
    std::unordered_map<int, Receiver::Held> removed;
    std::vector<int> msgIds;
    {
        const base::MutexLock lock(m_state->registration);
        receiver = m_state->receiver.get();
        if (receiver == nullptr) return false;
        removed = receiver->RemoveAll();
        for (const auto& [msgId, callback] : removed) msgIds.push_back(msgId);
        m_state->connection->RemoveReceiver(*receiver, msgIds);
    }
    removed.clear();
    receiver->WaitUntilDone(std::nullopt);
    return !msgIds.empty();
}

bool IPCMessageClient::PostIPCMessage(const TagIPCMessageItem& item) {
    ipc_client::Trace(IpcTraceEvent::kPosted, item);
    return m_state->connection->Post(item);
}

bool IPCMessageClient::PostTo(std::span<const IpcLife> lives, const TagIPCMessageItem& item, std::uint64_t event) {
    ipc_client::Trace(IpcTraceEvent::kPosted, item);
    return m_state->connection->PostTo(lives, event, item);
}
