#include "broker/broker_loop.h"

#include <algorithm>
#include <asio/post.hpp>
#include <exception>
#include <utility>

#include "base/reason.h"
#include "diagnostics.h"

namespace ipc_client {

using std::chrono::steady_clock;

namespace {

constexpr std::chrono::milliseconds kLookAfter{1000};  // between two looks at the process of somebody who is absent

}  // namespace

BrokerLoop::BrokerLoop(asio::io_context& io, const std::filesystem::path& path, const IPCBrokerLimits& limits)
    : m_io(io),
      m_limits(limits),
      m_life(NewLife()),
      m_lines(OwnProcess()),
      m_listener(io, path),
      m_acceptAgain(io),
      m_pending(limits) {}

void BrokerLoop::Recover() {
    Accept();
    FlushTouched();
    ResumeSettled();
}

// ---- Connections

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
    if (const std::string why = isOwn ? std::string() : WhyRefused(process); !why.empty()) return Refuse(socket, why);
    m_touched.reserve(m_peers.size() + 1);
    m_paused.reserve(m_peers.size() + 1);
    const unsigned number = ++m_lastNumber;
    auto session = std::make_unique<BrokerSession>(std::move(socket), number, isOwn, *this);
    auto peer = std::make_unique<BrokerPeer>(number, m_io, *session);
    session->SetPeer(peer.get());
    ++m_processes[process];
    m_peers.emplace(number, std::move(peer));
    m_sessions.emplace(number, std::move(session)).first->second->Start(m_limits.handshake);
}

void BrokerLoop::Refuse(PipeSocket& socket, const std::string& why) {
    ++m_refused;
    const unsigned long process = PeerProcess(socket);
    m_lines.Write(kIpcLogEvent, process, [&] {
        return "broker: a connection of process " + std::to_string(process) + " was refused: " + why + " (" +
               std::to_string(m_refused) + " so far)";
    });
    std::string frames;
    AppendHello(frames);
    AppendRefusal(frames, RefusalCode::kLimit, why);
    WriteHello(socket, frames);
}

std::string BrokerLoop::WhyRefused(unsigned long process) const {
    const std::size_t most = std::min(m_limits.connections, MostOpenFiles() / 2);
    if (m_sessions.size() >= most) return "there are " + std::to_string(most) + " connections";
    const auto entry = m_processes.find(process);
    const std::size_t has = entry == m_processes.end() ? 0 : entry->second;
    if (has < m_limits.connectionsPerProcess) return "";
    return "it has " + std::to_string(m_limits.connectionsPerProcess) + " connections";
}

BrokerSession* BrokerLoop::FindSession(unsigned number) {
    const auto entry = m_sessions.find(number);
    return entry == m_sessions.end() ? nullptr : entry->second.get();
}

void BrokerLoop::CountUnfinished(BrokerSession& session, std::size_t bytes) {
    if (!session.IsOwn()) m_unfinishedBytes += bytes - session.UnfinishedBytes();
    session.SetUnfinishedBytes(bytes);
}

void BrokerLoop::CloseUnfinished() {
    while (m_unfinishedBytes > m_limits.unfinishedBytes) {
        BrokerSession* longest = nullptr;
        for (const auto& [number, session] : m_sessions) {
            if (session->IsOwn()) continue;
            if (longest == nullptr || session->UnfinishedBytes() > longest->UnfinishedBytes()) longest = session.get();
        }
        if (longest == nullptr) return;
        longest->Close("unfinished frames take too much memory, its own has " +
                           std::to_string(longest->UnfinishedBytes()) + " bytes",
                       RefusalCode::kLimit);
    }
}

void BrokerLoop::BatchEnded(BrokerSession& session) {
    const unsigned number = session.Number();  // it may end in here
    CountUnfinished(session, session.UnfinishedBytesNow());
    FlushTouched();
    GiveUpHeaviest();
    CloseUnfinished();
    if (BrokerSession* const open = FindSession(number)) PauseIfItOwes(*open);
    ResumeSettled();
}

void BrokerLoop::PauseIfItOwes(BrokerSession& session) {
    BrokerPeer* const peer = session.Peer();
    if (peer == nullptr || !peer->PausesBeyond(SenderLimit())) return;
    session.Pause();
    m_paused.push_back(peer->Number());
    if (!peer->IsNamed()) return;
    std::string answer;
    AppendAnswer(answer, false);
    session.Append(answer);
    Touch(*peer);
}

void BrokerLoop::ResumeSettled() {
    std::erase_if(m_paused, [this](unsigned number) {
        BrokerPeer* const peer = FindPeer(number);
        if (peer == nullptr || peer->Session() == nullptr) return true;
        if (!peer->IsSettled()) return false;
        if (peer->IsNamed()) Answer(*peer);
        peer->Session()->Resume();
        return true;
    });
}

// The more there are, the less each may have on its way, so that all together stay within bounds.
std::size_t BrokerLoop::SenderLimit() const {
    constexpr std::size_t kLeast = 64 * 1024;
    return std::max(kLeast, std::min(m_limits.senderBytes, m_limits.outgoingBytes / 2 / (m_sessions.size() + 1)));
}

void BrokerLoop::Written(BrokerSession& session) {
    if (BrokerPeer* const peer = session.Peer()) {
        if (!peer->IsNamed()) TakeOutWritten(*peer);
        if (peer->HasUnsent()) Touch(*peer);
    }
    FlushTouched();
    ResumeSettled();
}

void BrokerLoop::Ended(BrokerSession& session) {
    CountUnfinished(session, 0);
    const auto process = m_processes.find(session.Process());
    if (process != m_processes.end() && --process->second == 0) m_processes.erase(process);
    BrokerPeer* const peer = session.Peer();
    m_sessions.erase(session.Number());
    if (peer != nullptr) {
        peer->Detach();
        if (peer->IsNamed() && !peer->Leaves()) {
            WaitForReturn(*peer);
        } else {
            Forget(*peer);
        }
    }
    if (m_paused.empty() && m_touched.empty()) return;
    asio::post(m_io, [this] {
        FlushTouched();
        ResumeSettled();
    });
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
                       [](const auto& entry) { return entry.second->Backlog() == 0; });
}

// ---- Peers

BrokerPeer* BrokerLoop::FindPeer(unsigned number) {
    const auto entry = m_peers.find(number);
    return entry == m_peers.end() ? nullptr : entry->second.get();
}

BrokerPeer* BrokerLoop::FindLife(const IpcLife& life, const BrokerSession& session) {
    const auto entry = m_lives.find(life);
    if (entry == m_lives.end()) return nullptr;
    if (entry->second->Identity().process == session.Process()) return entry->second;
    throw ProtocolError("it introduces itself as another process");
}

void BrokerLoop::Introduce(BrokerSession& session, const Introduction& introduction) {
    const bool isKnown = TakeOver(session, introduction);
    if (!isKnown) {
        m_lives.emplace(introduction.life, session.Peer());
        session.Peer()->Introduce(introduction);
    }
    Greet(*session.Peer(), introduction, isKnown);
}

// Gives the session the peer of that life, if it is known: it has come back, perhaps before its earlier connection was
// seen to end. What is known of it may be older than what it says: an earlier introduction of its that came late.
bool BrokerLoop::TakeOver(BrokerSession& session, const Introduction& introduction) {
    BrokerPeer* peer = FindLife(introduction.life, session);
    if (peer == nullptr) return false;
    if (peer->HasSeen(introduction.connection)) throw ProtocolError("its life has had a later connection");
    if (peer->Session() != nullptr) peer->Session()->Close("its process has connected anew", RefusalCode::kReplaced);
    peer = FindLife(introduction.life, session);
    if (peer == nullptr) return false;
    if (introduction.received > peer->NextDelivery()) {
        Forget(*peer);
        return false;
    }
    std::erase(m_paused, peer->Number());
    Forget(*session.Peer());
    session.SetPeer(peer);
    peer->Attach(session, introduction.connection);
    if (introduction.first > peer->Posted().Next()) Skip(*peer, introduction.first - peer->Posted().Next());
    return true;
}

void BrokerLoop::Greet(BrokerPeer& peer, const Introduction& introduction, bool isKnown) {
    std::string frames;
    Introduction own;
    own.life = m_life;
    if (isKnown) own.known = introduction.life;
    own.first = peer.FirstDelivery();
    own.received = peer.Posted().Next();
    AppendIntroduction(frames, own);
    peer.Posted().TakeDone();  // all of it is told anew
    const std::vector<NumberRange> done = peer.Posted().DoneFrom(introduction.first);
    if (!done.empty()) AppendNumbers(frames, FrameType::kAcknowledge, done);
    frames += peer.DeliveriesFrom(std::max(introduction.received, own.first));  // what is before that is given up
    peer.Session()->Append(frames);
    peer.AllIsSent();
    TellWaitingAnew(peer);
    Touch(peer);
}

void BrokerLoop::WaitForReturn(BrokerPeer& peer) {
    peer.SetGraceEnds(steady_clock::now() + m_limits.absence);
    LookAfter(peer);
}

// Its process may be gone already: then it does not come back.
void BrokerLoop::LookAfter(BrokerPeer& peer) {
    try {
        peer.Grace().expires_after(std::min(kLookAfter, m_limits.absence));
        peer.Grace().async_wait([this, number = peer.Number()](std::error_code cancelled) {
            BrokerPeer* const absent = cancelled ? nullptr : FindPeer(number);
            if (absent == nullptr || absent->Session() != nullptr) return;
            if (!ProcessExists(absent->Identity().process)) {
                Forget(*absent);
            } else {
                if (steady_clock::now() >= absent->GraceEnds()) GiveUp(*absent);
                LookAfter(*absent);
            }
            FlushTouched();
            ResumeSettled();
        });
    } catch (const std::exception&) {  // no memory
        Forget(peer);
    }
}

// What waits for it is lost, and it is no receiver any more. What it has sent stays known, so that nothing of it is
// taken twice when it comes back.
void BrokerLoop::GiveUp(BrokerPeer& peer) {
    for (const Route& route : peer.Routes()) ForgetReceiver(peer, route);
    std::size_t lost = 0;
    peer.TakeOut({0, peer.NextDelivery()}, [&](const BrokerPeer::Handled& handled) {
        Handled(peer, FindPeer(handled.peer), handled);
        ++lost;
    });
    peer.GiveUp();
    if (lost == 0) return;
    m_lines.Write(kIpcLogEvent, peer.Identity().process,
                  [&] { return peer.Name() + ": " + std::to_string(lost) + " messages for it are lost"; });
}

void BrokerLoop::Forget(BrokerPeer& peer) {
    if (peer.HasArrived()) TellService(peer, kIpcPeerLeft, {});
    GiveUp(peer);
    if (peer.IsNamed()) m_lives.erase(peer.Identity().life);
    if (peer.Session() != nullptr) peer.Session()->SetPeer(nullptr);
    m_peers.erase(peer.Number());
}

void BrokerLoop::GiveUpAndClose(BrokerPeer& peer, const std::string& reason, RefusalCode code) {
    BrokerSession* const session = peer.Session();
    GiveUp(peer);
    if (session != nullptr) session->Close(reason, code);
}

// What the service itself has not handled is bounded by what its senders may have on their way.
void BrokerLoop::GiveUpHeaviest() {
    while (m_queuedBytes > m_limits.outgoingBytes) {
        BrokerPeer* heaviest = nullptr;
        for (const auto& [number, peer] : m_peers) {
            if (peer->IsOwn()) continue;
            if (heaviest == nullptr || peer->QueuedBytes() > heaviest->QueuedBytes()) heaviest = peer.get();
        }
        if (heaviest == nullptr) return;
        GiveUpAndClose(*heaviest,
                       "it reads too slowly, " + std::to_string(heaviest->QueuedBytes()) + " bytes wait for it",
                       RefusalCode::kLimit);
    }
}

}  // namespace ipc_client
