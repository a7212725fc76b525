#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "broker/broker_peer.h"
#include "broker/broker_session.h"
#include "broker/pending_messages.h"
#include "diagnostics.h"
#include "ipc_client/ipc_broker.h"
#include "pipe/pipe_transport.h"
#include "wire/frame.h"

namespace ipc_client {

// The broker's work, all of it on the one thread that runs `io`: accepts connections, keeps who announced what, and
// routes messages. The thread must have ended before the loop is destroyed.
class BrokerLoop final {
public:
    // Takes the pipe's name; throws std::runtime_error as PipeListener does.
    BrokerLoop(asio::io_context& io, const std::filesystem::path& path, const IPCBrokerLimits& limits);

    // Waits for connections, unless it does already.
    void Accept();

    // Takes no new connections from now on, hands over what has been written to the pipe until now, and waits until it
    // has been taken, or until then. On the one thread that is left.
    void Drain(std::chrono::steady_clock::time_point until);

    // Begins again what failed for want of memory.
    void Recover();

    // What a session brings.
    void Introduce(BrokerSession& session, const Introduction& introduction);
    void RouteMessage(BrokerPeer& sender, std::string_view messageBody);
    void RouteAddressed(BrokerPeer& sender, const AddressedView& addressed);
    void Announce(BrokerPeer& peer, const std::vector<Route>& routes);
    void Withdraw(BrokerPeer& peer, const std::vector<Route>& routes);
    void TakeHandled(BrokerPeer& receiver, const std::vector<NumberRange>& handled);
    void Skip(BrokerPeer& sender, std::uint64_t count);
    void Answer(BrokerPeer& peer);
    void TakeFarewell(BrokerPeer& peer) { peer.Leave(); }
    void BatchEnded(BrokerSession& session);  // after each batch of frames
    void Written(BrokerSession& session);
    void Ended(BrokerSession& session);  // its last call; destroys the session

    PeerLog& Lines() { return m_lines; }  // about what other processes do

private:
    // Connections.
    void Accepted(std::error_code error, PipeSocket socket);
    void AcceptLater();
    void Open(PipeSocket socket);
    void Refuse(PipeSocket& socket, const std::string& why);
    std::string WhyRefused(unsigned long process) const;
    BrokerSession* FindSession(unsigned number);  // null when it has ended
    void CountUnfinished(BrokerSession& session, std::size_t bytes);
    void CloseUnfinished();

    // Peers.
    BrokerPeer* FindPeer(unsigned number);  // null when it was forgotten
    BrokerPeer* FindLife(const IpcLife& life, const BrokerSession& session);
    bool TakeOver(BrokerSession& session, const Introduction& introduction);
    void Greet(BrokerPeer& peer, const Introduction& introduction, bool isKnown);
    void WaitForReturn(BrokerPeer& peer);
    void LookAfter(BrokerPeer& peer);
    void GiveUp(BrokerPeer& peer);
    void Forget(BrokerPeer& peer);
    void GiveUpAndClose(BrokerPeer& peer, const std::string& reason, RefusalCode code);
    void GiveUpHeaviest();

    // Messages.
    template <typename Send>
    void Dispatch(BrokerPeer& sender, Route route, std::string_view messageBody, const Send& send);
    bool QueueToAll(BrokerPeer& sender, Route route, const Origin& origin, std::string_view messageBody,
                    const std::vector<IpcLife>* lives);
    void Queue(BrokerPeer* sender, BrokerPeer& receiver, Origin origin, std::string_view messageBody);
    void Keep(BrokerPeer& sender, Route route, const Origin& origin, std::string_view messageBody);
    void HandOver(BrokerPeer& peer, const std::vector<Route>& routes);
    void TellOfAll();
    void TellOfArrival(const BrokerPeer& peer);
    void TellService(const BrokerPeer& about, int msgId, std::string_view payload);
    void TakeOutWritten(BrokerPeer& receiver);
    void TakeOut(BrokerPeer& receiver, NumberRange range);
    void Handled(const BrokerPeer& receiver, BrokerPeer* sender, const BrokerPeer::Handled& message);
    void Done(const Origin& origin);
    void Done(BrokerPeer& sender, std::uint64_t number);
    void ForgetReceiver(BrokerPeer& peer, Route route);
    void Touch(BrokerPeer& peer);
    void FlushTouched();
    void Flush(BrokerPeer& peer);
    void TellWaitingAnew(BrokerPeer& sender);
    void AppendNews(BrokerPeer& sender);
    void PauseIfItOwes(BrokerSession& session);
    void ResumeSettled();
    bool AllIsWritten() const;
    std::size_t SenderLimit() const;

    asio::io_context& m_io;
    const IPCBrokerLimits m_limits;
    const IpcLife m_life;
    PeerLog m_lines;
    PipeListener m_listener;
    asio::steady_timer m_acceptAgain;
    bool m_isAccepting = false;
    std::unordered_map<unsigned, std::unique_ptr<BrokerSession>> m_sessions;  // by number
    std::unordered_map<unsigned, std::unique_ptr<BrokerPeer>> m_peers;        // by number
    std::unordered_map<IpcLife, BrokerPeer*> m_lives;                 // of the peers that have introduced themselves
    std::unordered_map<unsigned long, std::size_t> m_processes;       // connections of each; none is 0
    std::unordered_map<Route, std::vector<BrokerPeer*>> m_receivers;  // no list is empty
    std::vector<unsigned> m_touched;  // peers with frames to flush; both have room for every peer
    std::vector<unsigned> m_paused;   // peers that are not read
    PendingMessages m_pending;
    std::size_t m_queuedBytes = 0;      // for peers of other processes than the service's
    std::size_t m_unfinishedBytes = 0;  // of them
    unsigned m_lastNumber = 0;          // of sessions and peers
    std::size_t m_refused = 0;          // connections
};

}  // namespace ipc_client
