#pragma once

#include <algorithm>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/mutex.h"
#include "client/delivery_ledger.h"
#include "client/receiver.h"
#include "client/taken_numbers.h"
#include "pipe/pipe_channel.h"
#include "pipe/pipe_transport.h"
#include "wire/frame.h"
#include "wire/kept_frames.h"

namespace ipc_client {

// For how long a connection is patient (docs/protocol.md). Tests choose smaller ones.
struct ConnectionTimes {
    std::chrono::milliseconds firstPause{20};      // before the second attempt to connect; doubles with each
    std::chrono::milliseconds longestPause{1000};  // between two attempts
    std::chrono::milliseconds handshake{5000};     // a broker that has not introduced itself by then is left
    std::chrono::milliseconds linger{500};         // for what was posted to be done, at the end
    std::chrono::milliseconds silence{5000};  // of a broker that owes something, before it is asked, and after that
};

// How long to wait before each attempt to connect.
class ReconnectPauses {
public:
    explicit ReconnectPauses(const ConnectionTimes& times)
        : m_first(times.firstPause), m_longest(times.longestPause), m_next(times.firstPause) {}

    std::chrono::milliseconds Next() { return std::exchange(m_next, std::min(m_next * 2, m_longest)); }

    // A connection that was open for so long has been lost. One that breaks as soon as it opens is not to be opened
    // again and again without a pause.
    void Lost(std::chrono::steady_clock::duration open) {
        if (open >= m_longest) m_next = m_first;
    }

private:
    std::chrono::milliseconds m_first;
    std::chrono::milliseconds m_longest;
    std::chrono::milliseconds m_next;
};

// Says that a connection has ended, once it has.
class EndSign {
public:
    void Give() {
        const base::MutexLock lock(m_mutex);
        m_isGiven = true;
        m_given.NotifyAll();
    }
    void Wait(std::chrono::steady_clock::time_point until) {
        const base::MutexLock lock(m_mutex);
        while (!m_isGiven && m_given.WaitUntil(m_mutex, until)) {
        }
    }

private:
    base::Mutex m_mutex;
    base::Condition m_given;
    bool m_isGiven BASE_GUARDED_BY(m_mutex) = false;
};

// A process's connection to one pipe, shared by all its clients of that pipe. Connects on an I/O thread of its own,
// again and again with increasing pauses; what is posted is kept until it is done, and sent again by the next
// connection.
class Connection final : public PipeChannel::Listener, public Receiver::Listener {
public:
    // The process's connection to that pipe, made if there is none. Throws std::bad_alloc, or std::system_error when
    // the system has no more threads or descriptors.
    static std::shared_ptr<Connection> ForPipe(const std::wstring& pipeName);

    // The connection if there is one, else null.
    static std::shared_ptr<Connection> Existing(const std::wstring& pipeName);

    // `predecessor`: of the process's last connection to that pipe, null when it had none.
    explicit Connection(const std::filesystem::path& path, const ConnectionTimes& times = {},
                        std::shared_ptr<EndSign> predecessor = nullptr);

    // Gives what was posted its time to be done, if there is a broker that takes it.
    ~Connection();

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // As IPCMessageClient::PostIPCMessage.
    bool Post(const TagIPCMessageItem& item);
    bool PostTo(std::span<const IpcLife> lives, std::uint64_t event, const TagIPCMessageItem& item);

    // From now on `receiver`, which must outlive this, gets the messages of its endpoint with these ids. The broker is
    // told of the first receiver of a route, of all at once, and of the last one's end.
    void AddReceiver(Receiver& receiver, const std::vector<int>& msgIds);
    void RemoveReceiver(Receiver& receiver, const std::vector<int>& msgIds);

    // A receiver that was full has room again, or goes. While there is a full one, what comes is left in the pipe: the
    // broker, and by it whoever sends so much, waits.
    void HasRoom(Receiver& receiver) override;
    void Handled(std::uint64_t delivery) noexcept override;

    bool IsOpen() const;

    const std::shared_ptr<EndSign>& End() const { return m_end; }

private:
    enum class Phase {
        kConnecting,  // not tried yet
        kGreeting,    // introduced to a broker that has not answered yet
        kOpen,
        kUnreachable,  // until the next attempt
    };

    // I/O thread.
    void Run();
    void Recover();
    void Connect();
    void ConnectLater(const std::string& reason);
    void IntroduceItself();
    void FrameArrived(const FrameView& frame) override;
    void Closed(std::string_view reason, int level) override;
    void TakeIntroduction(const Introduction& broker);
    void GoOn(const Introduction& broker) BASE_REQUIRES(m_routesMutex);
    void TakeDelivery(const DeliveryView& delivery);
    using Copies = std::vector<std::pair<Receiver*, Receiver::Messages>>;
    Copies CopiesOf(const MessageView& message, const Stamp& stamp, std::uint64_t delivery)
        BASE_REQUIRES(m_routesMutex);
    void DeliverToAll(Copies& copies) noexcept BASE_REQUIRES(m_routesMutex);
    void TakeDone(const std::vector<NumberRange>& done);
    void TakeWaiting(const std::vector<NumberRange>& waiting);
    bool IsNew(const Stamp& stamp);
    bool IsNewEvent(std::uint64_t event);
    void AcknowledgeLater();
    void Acknowledge();
    void WatchSilence() BASE_REQUIRES(m_stateMutex);
    void LookAtSilence();

    static void TellOfChange();  // the process's sink, see ipc_diagnostics.h

    void SendRoutes(FrameType type, const std::vector<Route>& routes);
    bool Send(std::string_view frame);
    void WaitUntilDone();
    bool IsFull();
    void ReadAgain();

    const std::filesystem::path m_path;
    const ConnectionTimes m_times;
    const IpcLife m_life;
    asio::io_context m_io{1};

    // I/O thread only.
    asio::steady_timer m_connectAgain;
    ReconnectPauses m_pauses;
    std::chrono::steady_clock::time_point m_openedAt;
    std::string m_lastReason;  // why the pipe could not be reached, as last logged
    std::string m_refusal;     // what the broker has said, for the line that tells of the end
    std::shared_ptr<PipeChannel> m_channel;
    bool m_isWaiting = false;     // for the next attempt
    bool m_isIntroduced = false;  // the broker, on this connection
    TakenNumbers m_taken;
    IpcLife m_broker;                            // the last one that introduced itself
    std::uint32_t m_connections = 0;             // of this life
    std::unordered_set<std::uint64_t> m_events;  // taken, the last kMostEvents of them,
    std::deque<std::uint64_t> m_eventsInOrder;   // these
    asio::steady_timer m_acknowledgeAt;
    bool m_isToAcknowledge = false;
    asio::steady_timer m_silenceEnds;
    bool m_wasHeard = false;         // since the timer was set
    bool m_wasAsked = false;         // and has not been heard since
    bool m_readsOthersOnly = false;  // the broker has said that it does not read this connection for now

    base::Mutex m_routesMutex;  // taken before the others
    std::unordered_map<Route, std::vector<Receiver*>> m_receivers BASE_GUARDED_BY(m_routesMutex);  // no list is empty
    std::set<Receiver*> m_full BASE_GUARDED_BY(m_routesMutex);

    DeliveryLedger m_deliveries;

    mutable base::Mutex m_stateMutex;
    base::Condition m_changed;  // the phase, or what is done
    Phase m_phase BASE_GUARDED_BY(m_stateMutex) = Phase::kConnecting;
    std::shared_ptr<PipeChannel> m_open BASE_GUARDED_BY(m_stateMutex);  // null while the phase is not kOpen
    KeptFrames m_posted BASE_GUARDED_BY(m_stateMutex);
    bool m_isWatching BASE_GUARDED_BY(m_stateMutex) = false;  // the broker's silence
    bool m_isEnding BASE_GUARDED_BY(m_stateMutex) = false;    // somebody waits until all is done

    const std::shared_ptr<EndSign> m_end = std::make_shared<EndSign>();
    const std::shared_ptr<EndSign> m_predecessor;

    std::thread m_thread;  // last: everything it uses is there before it starts
};

// As SetPipeConnectionSink.
void SetChangeSink(std::function<void()> changed);

}  // namespace ipc_client
