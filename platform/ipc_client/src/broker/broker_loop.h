#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include "broker/pending_messages.h"
#include "broker/queue_shares.h"
#include "ipc_client/ipc_broker.h"
#include "pipe/pipe_channel.h"
#include "pipe/pipe_transport.h"
#include "wire/frame.h"

namespace ipc_client {

class BrokerLoop;

// One connection at the broker. Broker thread only.
class BrokerSession final : public PipeChannel::Listener {
public:
    BrokerSession(PipeSocket socket, unsigned number, bool isOwn, BrokerLoop& broker);

    // May end the session before it returns.
    void Start(std::chrono::milliseconds handshake);
    void Close(std::string_view reason) { m_channel->Close(reason); }

    unsigned Number() const { return m_number; }
    unsigned long Process() const { return m_process; }
    bool IsOwn() const { return m_isOwn; }  // of the service's process

    // Whether what the one sends may reach the other: all but messages between two processes that are both not the
    // service's.
    bool MayTalkTo(const BrokerSession& other) const { return m_isOwn || other.m_isOwn || &other == this; }

    // As a receiver.
    std::set<Route>& Routes() { return m_routes; }        // announced
    bool Queue(unsigned sender, std::string_view frame);  // false: no memory for it, the session ends at its flush
    bool Touch() { return !std::exchange(m_isTouched, true); }  // false when it is to be flushed already
    void Flush();                                               // writes what was queued; may end the session
    std::size_t QueuedBytes() const { return m_shares.Bytes(); }

    // As a sender: what is taken for a long frame of its, as last counted and now.
    std::size_t UnfinishedBytes() const { return m_unfinishedBytes; }
    void SetUnfinishedBytes(std::size_t bytes) { m_unfinishedBytes = bytes; }
    std::size_t UnfinishedBytesNow() const { return m_channel->UnfinishedBytes(); }

    // How much its receivers have not taken yet. It is not read while that is too much.
    void Owes(std::size_t bytes) { m_owed += bytes; }
    void Settled(std::size_t bytes) { m_owed -= bytes; }
    bool PauseBeyond(std::size_t limit);  // whether it is not read from now on
    bool ResumeIfSettled();               // whether it is read again; may end the session

private:
    void Opened() override;
    void FrameArrived(const FrameView& frame) override;
    void BatchEnded() override;
    void Written() override;
    void Closed(std::string_view reason, int level) override;
    void SettleTo(std::size_t left);  // bytes of the queue

    const unsigned m_number;
    const unsigned long m_process;
    const bool m_isOwn;
    const std::string m_name;  // for log lines
    BrokerLoop& m_broker;
    std::shared_ptr<PipeChannel> m_channel;
    std::set<Route> m_routes;
    QueueShares m_shares;
    std::size_t m_unfinishedBytes = 0;
    std::size_t m_owed = 0;
    std::size_t m_readsAgainAt = 0;  // [bytes] of m_owed; 0: it is read
    bool m_isTouched = false;
    bool m_lacksMemory = false;
};

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

    void Announce(BrokerSession& session, const std::vector<Route>& routes);
    void Withdraw(BrokerSession& session, const std::vector<Route>& routes);
    void RouteMessage(BrokerSession& sender, Route route, std::string_view frame);
    void BatchEnded(BrokerSession& sender);                                 // after each batch of frames
    void Written();                                                         // to one of the connections
    void Settled(const BrokerSession& receiver, QueueShares::Share share);  // so much of a sender has left its queue
    void Ended(BrokerSession& session);                                     // its last call; destroys the session

    // Begins again what failed for want of memory.
    void Recover();

private:
    void Accepted(std::error_code error, PipeSocket socket);
    void AcceptLater();
    void Open(PipeSocket socket);
    std::string WhyRefused(unsigned long process) const;
    void Keep(BrokerSession& sender, Route route, std::string_view frame);
    void Queue(BrokerSession& receiver, unsigned sender, std::string_view frame);
    BrokerSession* Find(unsigned number);  // null when it has ended
    void FlushTouched();
    void ResumeSettled();
    void CloseTooSlow();
    void CloseUnfinished();
    template <typename BytesOf>
    BrokerSession* Heaviest(BytesOf bytesOf);
    void CountUnfinished(BrokerSession& session, std::size_t bytes);
    void ForgetReceiver(BrokerSession& session, Route route);
    bool AllIsWritten() const;
    std::size_t SenderLimit() const;

    asio::io_context& m_io;
    const IPCBrokerLimits m_limits;
    PipeListener m_listener;
    asio::steady_timer m_acceptAgain;
    bool m_isAccepting = false;
    std::unordered_map<unsigned, std::unique_ptr<BrokerSession>> m_sessions;  // by number
    std::unordered_map<unsigned long, std::size_t> m_processes;               // connections of each; none is 0
    std::unordered_map<Route, std::vector<BrokerSession*>> m_receivers;       // no list is empty
    std::vector<unsigned> m_touched;  // numbers of sessions that have frames to flush; both have room for every session
    std::vector<unsigned> m_paused;   // that are not read
    PendingMessages m_pending;
    std::size_t m_queuedBytes = 0;      // for sessions of other processes than the service's
    std::size_t m_unfinishedBytes = 0;  // of them
    unsigned m_sessionNumber = 0;
    std::size_t m_refused = 0;  // connections
};

}  // namespace ipc_client
