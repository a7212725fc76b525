#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "broker/broker_session.h"
#include "broker/origin.h"
#include "ipc_client/ipc_sender.h"
#include "wire/frame.h"
#include "wire/kept_frames.h"
#include "wire/outstanding.h"

namespace ipc_client {

// Somebody that the broker knows: what it listens to, what is on its way to it, and what it has sent that others have
// not handled. One that has introduced itself outlives its connections, for a while. Broker thread only.
class BrokerPeer {
public:
    enum class Phase {
        kGreeting,  // connected; has not introduced itself, and perhaps never will
        kOpen,      // introduced and connected
        kAbsent,    // introduced, and its connection is gone
    };

    BrokerPeer(unsigned number, asio::io_context& io, BrokerSession& session);

    unsigned Number() const { return m_number; }
    const IpcSender& Identity() const { return m_identity; }
    bool IsOwn() const { return m_isOwn; }  // of the service's process
    bool IsNamed() const { return m_phase != Phase::kGreeting; }
    Phase PhaseNow() const { return m_phase; }
    const std::string& Name() const { return m_name; }  // for log lines

    // Whether what the one sends may reach the other: all but messages between two processes that are both not the
    // service's.
    bool MayTalkTo(const BrokerPeer& other) const { return m_isOwn || other.m_isOwn || &other == this; }

    BrokerSession* Session() const { return m_session; }  // null while it is absent
    void Introduce(const Introduction& introduction);
    bool HasSeen(std::uint32_t connection) const { return connection <= m_connection; }  // of this life, or a later one
    void Attach(BrokerSession& session, std::uint32_t connection);
    void Detach();
    asio::steady_timer& Grace() { return m_grace; }
    void SetGraceEnds(std::chrono::steady_clock::time_point ends) { m_graceEnds = ends; }
    std::chrono::steady_clock::time_point GraceEnds() const { return m_graceEnds; }

    // As a receiver. Queues a message for it until Send; returns what that takes, or 0 when there is no memory for it.
    // One that has lacked memory has to be forgotten: something is missing in its queue.
    std::size_t Deliver(const Origin& origin, std::string_view messageBody);
    bool LacksMemory() const { return m_lacksMemory; }
    void GiveUp();  // it has no deliveries any more, and will not know what it has missed
    std::uint64_t FirstDelivery() const { return m_deliveries.First(); }
    std::uint64_t NextDelivery() const { return m_deliveries.Next(); }
    std::string DeliveriesFrom(std::uint64_t number) const { return m_deliveries.From(number); }  // then AllIsSent
    void AllIsSent() { m_deliveries.SetAllSent(); }

    // Gives its connection what it has not been given of the queue, as long as not too much is unwritten there: what
    // somebody does not read is in memory once. It may lack memory then.
    void Send();
    bool HasUnsent() const { return !m_deliveries.Unsent().empty(); }
    std::size_t QueuedBytes() const { return m_deliveries.Bytes(); }

    // Whose message left its queue, and how many bytes.
    struct Handled {
        unsigned peer;
        std::uint64_t number;
        std::size_t bytes;
        bool isCharged;
    };

    // Takes these messages out of its queue; calls `handled` with each.
    template <typename F>
    void TakeOut(NumberRange range, const F& handled) {
        m_deliveries.Done(range, [&](std::uint64_t number, std::size_t bytes) {
            const Source& source = m_sources[m_sources.size() - (m_deliveries.Next() - number)];
            handled(Handled{source.peer, source.number, bytes, source.isCharged});
        });
        while (m_sources.size() > m_deliveries.Next() - m_deliveries.First()) m_sources.pop_front();
    }

    // Nobody acknowledges for one that has not introduced itself: what is written is done.
    template <typename F>
    void TakeOutWritten(std::size_t unwritten, const F& handled) {
        while (m_deliveries.Bytes() > unwritten && m_deliveries.Bytes() - m_deliveries.FrontBytes() >= unwritten) {
            TakeOut({m_deliveries.First(), m_deliveries.First() + 1}, handled);
        }
    }

    std::set<Route>& Routes() { return m_routes; }                              // announced
    bool ReplacesRoutes() { return std::exchange(m_replacesRoutes, false); }    // with the next announcement
    bool Arrives() { return IsNamed() && !std::exchange(m_hasArrived, true); }  // with its first announcement
    bool HasArrived() const { return m_hasArrived; }
    bool MayHaveMissed() const { return m_mayHaveMissed; }

    // As a sender.
    Outstanding& Posted() { return m_posted; }
    std::vector<NumberRange>& Waiting() { return m_waiting; }  // posted, nobody has announced them, and it is not told
    void Owe(std::size_t bytes) { m_owed += bytes; }
    void Settle(std::size_t bytes) { m_owed -= bytes; }
    bool PausesBeyond(std::size_t limit);  // whether it is not to be read from now on
    bool IsSettled() const { return m_owed <= m_readsAgainAt; }

    bool Touch() { return !std::exchange(m_isTouched, true); }  // false when it is to be flushed already
    void Untouch() { m_isTouched = false; }
    void Leave() { m_leaves = true; }
    bool Leaves() const { return m_leaves; }  // has said farewell

private:
    struct Source {
        unsigned peer;
        bool isCharged;
        std::uint64_t number;
    };

    void WriteMessage(std::string_view messageBody);

    const unsigned m_number;
    const bool m_isOwn;
    const std::string m_name;
    IpcSender m_identity;
    Phase m_phase = Phase::kGreeting;
    BrokerSession* m_session;
    std::uint32_t m_connection = 0;  // the last of this life
    asio::steady_timer m_grace;
    std::chrono::steady_clock::time_point m_graceEnds;

    KeptFrames m_deliveries;
    std::deque<Source> m_sources;  // of the deliveries, the last of them; one each
    std::set<Route> m_routes;
    bool m_lacksMemory = false;
    bool m_replacesRoutes = false;
    bool m_hasArrived = false;
    bool m_mayHaveMissed = false;

    Outstanding m_posted;
    std::vector<NumberRange> m_waiting;
    std::size_t m_owed = 0;
    std::size_t m_readsAgainAt = 0;  // [bytes] of m_owed

    bool m_isTouched = false;
    bool m_leaves = false;
};

}  // namespace ipc_client
