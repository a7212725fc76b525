#include "ipc_client/ipc_broker.h"

#include <algorithm>
#include <asio/steady_timer.hpp>
#include <iterator>
#include <set>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/path.h"
#include "base/reason.h"
#include "broker/pending_messages.h"
#include "diagnostics.h"
#include "pipe/pipe_channel.h"
#include "pipe/pipe_path.h"

namespace ipc_client {
namespace {

class BrokerLoop;

// One connection at the broker. Broker thread only.
class BrokerSession final : public PipeChannel::Listener {
public:
    BrokerSession(PipeSocket socket, unsigned number, const IPCBrokerLimits& limits, BrokerLoop& broker);

    // May end the session before it returns.
    void Start();

    void Queue(std::string_view frame) { m_channel->Append(frame); }

    // Writes what was queued; ends the session when too much is left.
    void Flush();

private:
    void Opened() override;
    void FrameArrived(const FrameView& frame) override;
    void BatchEnded() override;
    void Closed(const std::string& reason, int level) override;

    const std::string m_name;  // for log lines
    const IPCBrokerLimits& m_limits;
    BrokerLoop& m_broker;
    std::shared_ptr<PipeChannel> m_channel;
};

// The broker's work, all of it on the one thread that runs `io`: accepts connections, keeps who announced what, and
// routes messages. The thread must have ended before the loop is destroyed.
class BrokerLoop final {
public:
    // Takes the pipe's name; throws std::runtime_error as PipeListener does.
    BrokerLoop(asio::io_context& io, const std::filesystem::path& path, const IPCBrokerLimits& limits);

    void Announce(BrokerSession& session, const std::vector<Route>& routes);
    void Withdraw(BrokerSession& session, const std::vector<Route>& routes);
    void RouteMessage(Route route, std::string_view frame);
    void FlushTouched();                 // after each batch of frames
    void Ended(BrokerSession& session);  // its last call; destroys the session

private:
    void Accept();
    void Accepted(std::error_code error, PipeSocket socket);
    void Keep(Route route, std::string_view frame);
    void Queue(BrokerSession& session, std::string_view frame);

    const IPCBrokerLimits m_limits;
    PipeListener m_listener;
    asio::steady_timer m_acceptAgain;
    std::unordered_map<BrokerSession*, std::unique_ptr<BrokerSession>> m_sessions;
    std::unordered_map<Route, std::vector<BrokerSession*>> m_receivers;  // no list is empty
    std::set<BrokerSession*> m_touched;                                  // have frames that were not flushed
    PendingMessages m_pending;
    unsigned m_sessionNumber = 0;
};

BrokerSession::BrokerSession(PipeSocket socket, unsigned number, const IPCBrokerLimits& limits, BrokerLoop& broker)
    : m_name("broker: connection " + std::to_string(number) + " (" + PeerName(socket) + ")"),
      m_limits(limits),
      m_broker(broker),
      m_channel(std::make_shared<PipeChannel>(std::move(socket), *this)) {}

void BrokerSession::Start() { m_channel->Start(m_limits.handshake); }

void BrokerSession::Flush() {
    m_channel->Flush();
    const std::size_t backlog = m_channel->Backlog();
    if (backlog <= m_limits.outgoingBytes) return;
    m_channel->Close("it reads too slowly, " + std::to_string(backlog) + " bytes wait for it");
}

void BrokerSession::Opened() { Log(kIpcLogDetail, m_name + " opened"); }

void BrokerSession::FrameArrived(const FrameView& frame) {
    switch (frame.type) {
        case FrameType::kMessage:
            return m_broker.RouteMessage(DecodeMessage(frame.body).route(), frame.whole);
        case FrameType::kAnnounce:
            return m_broker.Announce(*this, DecodeRoutes(frame.body));
        case FrameType::kWithdraw:
            return m_broker.Withdraw(*this, DecodeRoutes(frame.body));
    }
}

void BrokerSession::BatchEnded() { m_broker.FlushTouched(); }

void BrokerSession::Closed(const std::string& reason, int level) {
    Log(level, m_name + " closed: " + reason);
    m_broker.Ended(*this);
}

BrokerLoop::BrokerLoop(asio::io_context& io, const std::filesystem::path& path, const IPCBrokerLimits& limits)
    : m_limits(limits), m_listener(io, path), m_acceptAgain(io), m_pending(limits) {
    Accept();
}

void BrokerLoop::Accept() {
    m_listener.AsyncAccept([this](std::error_code error, PipeSocket socket) { Accepted(error, std::move(socket)); });
}

void BrokerLoop::Accepted(std::error_code error, PipeSocket socket) {
    if (error) {
        Log(kIpcLogEvent, "broker: a connection was not accepted: " + base::Reason(error));
        m_acceptAgain.expires_after(std::chrono::milliseconds(100));  // out of descriptors, say: it may pass
        return m_acceptAgain.async_wait([this](std::error_code cancelled) {
            if (!cancelled) Accept();
        });
    }
    auto owned = std::make_unique<BrokerSession>(std::move(socket), ++m_sessionNumber, m_limits, *this);
    BrokerSession& session = *owned;
    m_sessions.emplace(&session, std::move(owned));
    session.Start();
    Accept();
}

void BrokerLoop::Announce(BrokerSession& session, const std::vector<Route>& routes) {
    for (const Route& route : routes) {
        std::vector<BrokerSession*>& receivers = m_receivers[route];
        if (std::find(receivers.begin(), receivers.end(), &session) == receivers.end()) receivers.push_back(&session);
    }
    for (const std::string& frame : m_pending.Take(routes)) Queue(session, frame);
}

void BrokerLoop::Withdraw(BrokerSession& session, const std::vector<Route>& routes) {
    for (const Route& route : routes) {
        const auto entry = m_receivers.find(route);
        if (entry == m_receivers.end()) continue;
        std::erase(entry->second, &session);
        if (entry->second.empty()) m_receivers.erase(entry);
    }
}

void BrokerLoop::RouteMessage(Route route, std::string_view frame) {
    const auto entry = m_receivers.find(route);
    if (entry == m_receivers.end()) return Keep(route, frame);
    for (BrokerSession* receiver : entry->second) Queue(*receiver, frame);
}

void BrokerLoop::Keep(Route route, std::string_view frame) {
    for (const PendingMessages::Dropped& dropped : m_pending.Add(route, frame)) {
        if (!IsWorthALine(dropped.soFar)) continue;
        Log(kIpcLogEvent, "broker: nobody takes " + Describe(dropped.route) +
                              ", its queue is full: the oldest dropped (" + std::to_string(dropped.soFar) + " so far)");
    }
}

void BrokerLoop::Queue(BrokerSession& session, std::string_view frame) {
    session.Queue(frame);
    m_touched.insert(&session);
}

void BrokerLoop::FlushTouched() {
    while (!m_touched.empty()) {
        BrokerSession* session = *m_touched.begin();
        m_touched.erase(m_touched.begin());
        session->Flush();
    }
}

void BrokerLoop::Ended(BrokerSession& session) {
    m_touched.erase(&session);
    for (auto entry = m_receivers.begin(); entry != m_receivers.end();) {
        std::erase(entry->second, &session);
        entry = entry->second.empty() ? m_receivers.erase(entry) : std::next(entry);
    }
    m_sessions.erase(&session);
}

}  // namespace
}  // namespace ipc_client

using ipc_client::BrokerLoop;
using ipc_client::Log;

class IPCBroker::Impl {
public:
    Impl(const std::filesystem::path& path, const IPCBrokerLimits& limits)
        : m_path(path), m_loop(m_io, path, limits), m_thread([this] { ipc_client::RunIo(m_io); }) {
        Log(kIpcLogDetail, base::Utf8FromPath(m_path) + ": broker started");
    }

    ~Impl() {
        m_io.stop();
        m_thread.join();
        Log(kIpcLogDetail, base::Utf8FromPath(m_path) + ": broker stopped");
    }

private:
    const std::filesystem::path m_path;
    asio::io_context m_io{1};
    BrokerLoop m_loop;
    std::thread m_thread;  // last: everything it uses is there before it starts
};

IPCBroker::IPCBroker(const std::wstring& pipeName, const IPCBrokerLimits& limits)
    : m_pipeName(pipeName), m_limits(limits) {}

IPCBroker::~IPCBroker() { Stop(); }

void IPCBroker::Start() {
    if (!m_impl) m_impl = std::make_unique<Impl>(ipc_client::PipePath(m_pipeName), m_limits);
}

void IPCBroker::Stop() { m_impl.reset(); }
