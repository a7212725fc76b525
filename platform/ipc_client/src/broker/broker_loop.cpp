#include "broker/broker_loop.h"

#include <algorithm>
#include <asio/post.hpp>
#include <exception>
#include <new>
#include <utility>

#include "base/reason.h"
#include "diagnostics.h"

namespace ipc_client {

using std::chrono::steady_clock;

namespace {

constexpr PendingMessages::Sender kService = 0;  // whatever connection it has; no session has this number

}  // namespace

BrokerSession::BrokerSession(PipeSocket socket, unsigned number, bool isOwn, BrokerLoop& broker)
    : m_number(number),
      m_process(PeerProcess(socket)),
      m_isOwn(isOwn),
      m_name("broker: connection " + std::to_string(number) + " (process " + std::to_string(m_process) + ")"),
      m_broker(broker),
      m_channel(std::make_shared<PipeChannel>(std::move(socket), *this)) {}

void BrokerSession::Start(std::chrono::milliseconds handshake) {
    try {
        m_channel->Start(handshake);
    } catch (const std::exception& error) {
        m_channel->Close(error.what());
    }
}

bool BrokerSession::Queue(unsigned sender, std::string_view frame) {
    try {
        m_channel->Append(frame);
        m_shares.Queued({sender, frame.size()});
        return true;
    } catch (const std::bad_alloc&) {
        m_lacksMemory = true;
        return false;
    }
}

void BrokerSession::Flush() {
    m_isTouched = false;
    if (m_lacksMemory) return Close("no memory for what is sent to it");
    try {
        m_channel->Flush();
        SettleTo(m_channel->Backlog());
    } catch (const std::exception& error) {
        Close(error.what());
    }
}

void BrokerSession::SettleTo(std::size_t left) {
    m_shares.ShrinkTo(left, [this](QueueShares::Share share) { m_broker.Settled(*this, share); });
}

bool BrokerSession::PauseBeyond(std::size_t limit) {
    if (m_isOwn || m_owed <= limit) return false;
    m_readsAgainAt = std::max<std::size_t>(limit / 2, 1);
    m_channel->Pause();
    return true;
}

bool BrokerSession::ResumeIfSettled() {
    if (m_owed > m_readsAgainAt) return false;
    m_channel->Resume();
    return true;
}

void BrokerSession::Opened() { Log(kIpcLogDetail, m_name + " opened"); }

void BrokerSession::FrameArrived(const FrameView& frame) {
    switch (frame.type) {
        case FrameType::kMessage:
            return m_broker.RouteMessage(*this, DecodeMessage(frame.body).route(), frame.whole);
        case FrameType::kAnnounce:
            return m_broker.Announce(*this, DecodeRoutes(frame.body));
        case FrameType::kWithdraw:
            return m_broker.Withdraw(*this, DecodeRoutes(frame.body));
    }
}

void BrokerSession::BatchEnded() { m_broker.BatchEnded(*this); }

void BrokerSession::Written() {
    SettleTo(m_channel->Backlog());
    m_broker.Written();
}

void BrokerSession::Closed(std::string_view reason, int level) {
    LogIfPossible(level, [&] { return m_name + " closed: " + std::string(reason); });
    SettleTo(0);
    m_broker.Ended(*this);
}

BrokerLoop::BrokerLoop(asio::io_context& io, const std::filesystem::path& path, const IPCBrokerLimits& limits)
    : m_io(io), m_limits(limits), m_listener(io, path), m_acceptAgain(io), m_pending(limits) {}

void BrokerLoop::Recover() {
    Accept();
    ResumeSettled();
}

void BrokerLoop::Accept() {
    if (m_isAccepting) return;
    m_listener.AsyncAccept([this](std::error_code error, PipeSocket socket) { Accepted(error, std::move(socket)); });
    m_isAccepting = true;
}

void BrokerLoop::Accepted(std::error_code error, PipeSocket socket) {
    m_isAccepting = false;
    if (!error) {
        Open(std::move(socket));
        return Accept();
    }
    if (IsWorthALine(++m_refused)) {
        Log(kIpcLogEvent, "broker: a connection was not accepted: " + base::Reason(error) + " (" +
                              std::to_string(m_refused) + " so far)");
    }
    if (error == std::errc::permission_denied) return Accept();  // another user's; the others need not wait for that
    AcceptLater();
}

// Out of descriptors, say: it may pass.
void BrokerLoop::AcceptLater() {
    m_acceptAgain.expires_after(std::chrono::milliseconds(100));
    m_acceptAgain.async_wait([this](std::error_code cancelled) {
        m_isAccepting = false;
        if (!cancelled) Accept();
    });
    m_isAccepting = true;
}

void BrokerLoop::Open(PipeSocket socket) {
    const unsigned long process = PeerProcess(socket);
    const bool isOwn = process == OwnProcess();
    if (const std::string why = isOwn ? std::string() : WhyRefused(process); !why.empty()) {
        if (IsWorthALine(++m_refused)) {
            Log(kIpcLogEvent, "broker: a connection of process " + std::to_string(process) + " was refused: " + why +
                                  " (" + std::to_string(m_refused) + " so far)");
        }
        return;
    }
    m_touched.reserve(m_sessions.size() + 1);
    m_paused.reserve(m_sessions.size() + 1);
    const unsigned number = ++m_sessionNumber;
    const auto entry =
        m_sessions.emplace(number, std::make_unique<BrokerSession>(std::move(socket), number, isOwn, *this)).first;
    ++m_processes[process];
    entry->second->Start(m_limits.handshake);
}

std::string BrokerLoop::WhyRefused(unsigned long process) const {
    const std::size_t most = std::min(m_limits.connections, MostOpenFiles() / 2);
    if (m_sessions.size() >= most) return "there are " + std::to_string(most) + " connections";
    const auto entry = m_processes.find(process);
    const std::size_t has = entry == m_processes.end() ? 0 : entry->second;
    if (has < m_limits.connectionsPerProcess) return "";
    return "it has " + std::to_string(m_limits.connectionsPerProcess) + " connections";
}

void BrokerLoop::Announce(BrokerSession& session, const std::vector<Route>& routes) {
    for (const Route& route : routes) {
        if (!session.Routes().insert(route).second) continue;
        if (session.Routes().size() > m_limits.routesPerConnection) {
            throw ProtocolError("it announces more than " + std::to_string(m_limits.routesPerConnection) + " routes");
        }
        m_receivers[route].push_back(&session);
    }
    // As MayTalkTo.
    const auto isFor = [&](unsigned sender) {
        return session.IsOwn() || sender == kService || sender == session.Number();
    };
    for (const PendingMessages::Taken& taken : m_pending.Take(routes, isFor)) {
        Queue(session, taken.sender, taken.frame);
    }
}

void BrokerLoop::Withdraw(BrokerSession& session, const std::vector<Route>& routes) {
    for (const Route& route : routes) {
        if (session.Routes().erase(route) != 0) ForgetReceiver(session, route);
    }
}

void BrokerLoop::ForgetReceiver(BrokerSession& session, Route route) {
    const auto entry = m_receivers.find(route);
    if (entry == m_receivers.end()) return;
    std::erase(entry->second, &session);
    if (entry->second.empty()) m_receivers.erase(entry);
}

void BrokerLoop::RouteMessage(BrokerSession& sender, Route route, std::string_view frame) {
    bool isTaken = false;
    if (const auto entry = m_receivers.find(route); entry != m_receivers.end()) {
        for (BrokerSession* receiver : entry->second) {
            if (!sender.MayTalkTo(*receiver)) continue;
            Queue(*receiver, sender.Number(), frame);
            isTaken = true;
        }
    }
    if (!isTaken) Keep(sender, route, frame);
}

void BrokerLoop::Keep(BrokerSession& sender, Route route, std::string_view frame) {
    for (const PendingMessages::Dropped& dropped :
         m_pending.Add(route, sender.IsOwn() ? kService : sender.Number(), frame)) {
        if (!IsWorthALine(dropped.soFar)) continue;
        Log(kIpcLogEvent, "broker: nobody takes " + Describe(dropped.route) +
                              ", its sender's queue is full: the oldest dropped (" + std::to_string(dropped.soFar) +
                              " so far)");
    }
}

void BrokerLoop::Queue(BrokerSession& receiver, unsigned sender, std::string_view frame) {
    if (receiver.Queue(sender, frame)) {
        if (!receiver.IsOwn()) m_queuedBytes += frame.size();
        if (BrokerSession* const session = Find(sender)) session->Owes(frame.size());
    }
    if (receiver.Touch()) m_touched.push_back(receiver.Number());
}

BrokerSession* BrokerLoop::Find(unsigned number) {
    const auto entry = m_sessions.find(number);
    return entry == m_sessions.end() ? nullptr : entry->second.get();
}

void BrokerLoop::Settled(const BrokerSession& receiver, QueueShares::Share share) {
    if (!receiver.IsOwn()) m_queuedBytes -= share.bytes;
    if (BrokerSession* const sender = Find(share.sender)) sender->Settled(share.bytes);
}

void BrokerLoop::BatchEnded(BrokerSession& sender) {
    const unsigned number = sender.Number();  // it may end in here
    CountUnfinished(sender, sender.UnfinishedBytesNow());
    FlushTouched();
    CloseTooSlow();
    CloseUnfinished();
    BrokerSession* const session = Find(number);
    if (session != nullptr && session->PauseBeyond(SenderLimit())) m_paused.push_back(number);
    ResumeSettled();
}

void BrokerLoop::FlushTouched() {
    while (!m_touched.empty()) {
        const unsigned number = m_touched.back();
        m_touched.pop_back();
        if (BrokerSession* const session = Find(number)) session->Flush();
    }
}

void BrokerLoop::ResumeSettled() {
    std::erase_if(m_paused, [this](unsigned number) {
        BrokerSession* const session = Find(number);
        return session == nullptr || session->ResumeIfSettled();
    });
}

void BrokerLoop::Written() { ResumeSettled(); }

// The more there are, the less each may have on its way, so that all together stay within bounds.
std::size_t BrokerLoop::SenderLimit() const {
    constexpr std::size_t kLeast = 64 * 1024;
    return std::max(kLeast, std::min(m_limits.senderBytes, m_limits.outgoingBytes / 2 / (m_sessions.size() + 1)));
}

// What the service itself has not read is bounded by what its senders may have on their way.
void BrokerLoop::CloseTooSlow() {
    while (m_queuedBytes > m_limits.outgoingBytes) {
        BrokerSession* const slowest = Heaviest([](const BrokerSession& session) { return session.QueuedBytes(); });
        if (slowest == nullptr) return;
        slowest->Close("it reads too slowly, " + std::to_string(slowest->QueuedBytes()) + " bytes wait for it");
    }
}

void BrokerLoop::CountUnfinished(BrokerSession& session, std::size_t bytes) {
    if (!session.IsOwn()) m_unfinishedBytes += bytes - session.UnfinishedBytes();
    session.SetUnfinishedBytes(bytes);
}

void BrokerLoop::CloseUnfinished() {
    while (m_unfinishedBytes > m_limits.unfinishedBytes) {
        BrokerSession* const longest = Heaviest([](const BrokerSession& session) { return session.UnfinishedBytes(); });
        if (longest == nullptr) return;
        longest->Close("unfinished frames take too much memory, its own has " +
                       std::to_string(longest->UnfinishedBytes()) + " bytes");
    }
}

// Of the sessions of other processes; null when none has any.
template <typename BytesOf>
BrokerSession* BrokerLoop::Heaviest(BytesOf bytesOf) {
    BrokerSession* heaviest = nullptr;
    std::size_t most = 0;
    for (const auto& [number, session] : m_sessions) {
        if (session->IsOwn() || bytesOf(*session) <= most) continue;
        heaviest = session.get();
        most = bytesOf(*session);
    }
    return heaviest;
}

void BrokerLoop::Ended(BrokerSession& session) {
    for (const Route& route : session.Routes()) ForgetReceiver(session, route);
    CountUnfinished(session, 0);
    const auto process = m_processes.find(session.Process());
    if (process != m_processes.end() && --process->second == 0) m_processes.erase(process);
    m_sessions.erase(session.Number());
    if (!m_paused.empty()) asio::post(m_io, [this] { ResumeSettled(); });
}

void BrokerLoop::Drain(steady_clock::time_point until) {
    constexpr std::chrono::milliseconds kQuiet{20};  // for what the system has not brought yet
    m_io.restart();
    while (steady_clock::now() < until) {
        try {
            Recover();
            if (m_io.run_one_for(kQuiet) == 0 && AllIsWritten()) return;
        } catch (const std::exception& error) {
            LogIfPossible(kIpcLogEvent, [&] { return "I/O thread: " + std::string(error.what()); });
        }
    }
}

bool BrokerLoop::AllIsWritten() const {
    return std::all_of(m_sessions.begin(), m_sessions.end(),
                       [](const auto& entry) { return entry.second->QueuedBytes() == 0; });
}

}  // namespace ipc_client
