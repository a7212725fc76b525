#include "client/connection.h"

#include <algorithm>
#include <asio/post.hpp>
#include <utility>

#include "base/file.h"
#include "base/reason.h"
#include "client/receiver.h"
#include "diagnostics.h"
#include "ipc_client/ipc_diagnostics.h"
#include "pipe/pipe_channel.h"
#include "pipe/pipe_path.h"

namespace ipc_client {

using std::chrono::steady_clock;

Connection::Connection(const std::filesystem::path& path, const ConnectionTimes& times)
    : m_path(path), m_times(times), m_connectAgain(m_io), m_pauses(times), m_thread([this] {
          RunIo(m_io, [this] { Recover(); });
      }) {}

Connection::~Connection() {
    WaitUntilWritten();
    m_io.stop();
    m_thread.join();
}

bool Connection::IsOpen() const {
    const base::MutexLock lock(m_stateMutex);
    return m_phase == Phase::kOpen;
}

bool Connection::Post(const TagIPCMessageItem& item) {
    if (!IsPostable(item)) return false;
    std::string frame;
    AppendMessage(frame, item);
    const base::MutexLock lock(m_stateMutex);
    const std::size_t waiting = m_open ? m_open->Backlog() : m_unsent.size();
    if (waiting + frame.size() > kMaxUnsentBytes) return false;
    if (!m_open) {
        m_unsent.append(frame);
        return true;
    }
    m_open->Append(frame);
    m_open->Flush();
    return true;
}

void Connection::AddReceiver(Receiver& receiver, int msgId) {
    const base::MutexLock lock(m_routesMutex);
    const Route route{receiver.endpointId(), msgId};
    std::vector<Receiver*>& receivers = m_receivers[route];
    if (std::find(receivers.begin(), receivers.end(), &receiver) != receivers.end()) return;
    receivers.push_back(&receiver);
    if (receivers.size() == 1) SendRoutes(FrameType::kAnnounce, {route});
}

void Connection::RemoveReceiver(Receiver& receiver, const std::vector<int>& msgIds) {
    const base::MutexLock lock(m_routesMutex);
    std::vector<Route> withdrawn;
    for (const int msgId : msgIds) {
        const auto entry = m_receivers.find({receiver.endpointId(), msgId});
        if (entry == m_receivers.end()) continue;
        std::erase(entry->second, &receiver);
        if (!entry->second.empty()) continue;
        withdrawn.push_back(entry->first);
        m_receivers.erase(entry);
    }
    SendRoutes(FrameType::kWithdraw, withdrawn);
}

// Tells an open broker; one that is not open learns everything when it opens.
void Connection::SendRoutes(FrameType type, const std::vector<Route>& routes) {
    if (routes.empty()) return;
    std::string frame;
    AppendRoutes(frame, type, routes);
    const base::MutexLock lock(m_stateMutex);
    if (!m_open) return;
    m_open->Append(frame);
    m_open->Flush();
}

// Begins, or begins again after an attempt that failed for want of memory.
void Connection::Recover() {
    if (!m_channel && !m_isWaiting) Connect();
}

void Connection::Connect() {
    try {
        m_channel = std::make_shared<PipeChannel>(ConnectPipe(m_io, m_path), *this);
        m_channel->Start(m_times.handshake);
    } catch (const std::exception& error) {
        m_channel.reset();
        ConnectLater(base::Reason(error));
    }
}

void Connection::ConnectLater(const std::string& reason) {
    bool changed = false;
    {
        const base::MutexLock lock(m_stateMutex);
        changed = std::exchange(m_phase, Phase::kUnreachable) != Phase::kUnreachable;
    }
    m_phaseChanged.NotifyAll();
    if (changed) TellOfChange();
    if (std::exchange(m_lastReason, reason) != reason) {
        Log(kIpcLogEvent, "the pipe cannot be reached, trying again: " + reason);
    }
    m_connectAgain.expires_after(m_pauses.Next());
    m_connectAgain.async_wait([this](std::error_code cancelled) {
        m_isWaiting = false;
        if (!cancelled) Connect();
    });
    m_isWaiting = true;
}

void Connection::Opened() {
    m_openedAt = steady_clock::now();
    m_lastReason.clear();
    {
        const base::MutexLock routesLock(m_routesMutex);
        std::vector<Route> routes;
        for (const auto& [route, receivers] : m_receivers) routes.push_back(route);
        const base::MutexLock lock(m_stateMutex);
        std::string frames;
        if (!routes.empty()) AppendRoutes(frames, FrameType::kAnnounce, routes);
        m_channel->Append(frames);
        m_channel->Append(m_unsent);
        m_unsent = {};
        m_open = m_channel;
        m_open->Flush();
        m_phase = Phase::kOpen;
    }
    m_phaseChanged.NotifyAll();
    TellOfChange();
    Log(kIpcLogDetail, base::Utf8FromPath(m_path) + ": connected");
}

void Connection::FrameArrived(const FrameView& frame) {
    if (frame.type != FrameType::kMessage) throw ProtocolError("a broker announces nothing");
    const MessageView message = DecodeMessage(frame.body);
    const base::MutexLock lock(m_routesMutex);
    const auto entry = m_receivers.find(message.route());
    if (entry == m_receivers.end()) return;
    for (Receiver* receiver : entry->second) {
        if (receiver->Deliver(message)) continue;
        m_full.insert(receiver);
        m_channel->Pause();
    }
}

void Connection::HasRoom(Receiver& receiver) {
    const base::MutexLock lock(m_routesMutex);
    if (m_full.erase(&receiver) != 0 && m_full.empty()) asio::post(m_io, [this] { ReadAgain(); });
}

void Connection::ReadAgain() {
    {
        const base::MutexLock lock(m_routesMutex);
        if (!m_full.empty()) return;
    }
    if (m_channel) m_channel->Resume();
}

void Connection::Closed(std::string_view reason, int) {
    bool wasOpen = false;
    {
        const base::MutexLock lock(m_stateMutex);
        if (m_open) m_unsent = m_open->TakeMessages();
        wasOpen = std::exchange(m_open, nullptr) != nullptr;
    }
    m_channel.reset();
    if (wasOpen) m_pauses.Lost(steady_clock::now() - m_openedAt);
    ConnectLater(base::Utf8FromPath(m_path) + (wasOpen ? ": connection lost: " : ": ") + std::string(reason));
}

// A broker that has not been tried yet counts as one that takes messages: a process may post one and end.
void Connection::WaitUntilWritten() {
    const auto until = steady_clock::now() + m_times.linger;
    std::shared_ptr<PipeChannel> open;
    {
        const base::MutexLock lock(m_stateMutex);
        while (m_phase == Phase::kConnecting && !m_unsent.empty()) {
            if (!m_phaseChanged.WaitUntil(m_stateMutex, until)) break;
        }
        open = m_open;
    }
    if (open) open->WaitWritten(until);
}

// ---- The process's connections

namespace {

struct Registry {
    base::Mutex mutex;
    std::unordered_map<std::string, std::weak_ptr<Connection>> connections BASE_GUARDED_BY(mutex);  // by path
};

// Never destroyed: clients may live until the process ends.
Registry& TheRegistry() {
    static Registry& registry = *new Registry;
    return registry;
}

struct ChangeSink {
    base::Mutex mutex;
    std::function<void()> changed BASE_GUARDED_BY(mutex);
};

ChangeSink& TheSink() {
    static ChangeSink& sink = *new ChangeSink;
    return sink;
}

}  // namespace

void Connection::TellOfChange() {
    ChangeSink& sink = TheSink();
    const base::MutexLock lock(sink.mutex);
    if (sink.changed) sink.changed();
}

void SetChangeSink(std::function<void()> changed) {
    ChangeSink& sink = TheSink();
    const base::MutexLock lock(sink.mutex);
    sink.changed = std::move(changed);
}

std::shared_ptr<Connection> Connection::ForPipe(const std::wstring& pipeName) {
    const std::filesystem::path path = PipePath(pipeName);
    Registry& registry = TheRegistry();
    const base::MutexLock lock(registry.mutex);
    std::weak_ptr<Connection>& known = registry.connections[base::Utf8FromPath(path)];
    std::shared_ptr<Connection> connection = known.lock();
    if (!connection) {
        // Not make_shared: the weak reference would keep the memory of an ended connection.
        connection = std::shared_ptr<Connection>(new Connection(path));  // NOLINT(modernize-make-shared)
        known = connection;
    }
    return connection;
}

std::shared_ptr<Connection> Connection::Existing(const std::wstring& pipeName) {
    const std::string path = base::Utf8FromPath(PipePath(pipeName));
    Registry& registry = TheRegistry();
    const base::MutexLock lock(registry.mutex);
    const auto known = registry.connections.find(path);
    return known == registry.connections.end() ? nullptr : known->second.lock();
}

}  // namespace ipc_client

bool IsPipeConnected(const std::wstring& pipeName) {
    const auto connection = ipc_client::Connection::Existing(pipeName);
    return connection && connection->IsOpen();
}

void SetPipeConnectionSink(std::function<void()> changed) { ipc_client::SetChangeSink(std::move(changed)); }
