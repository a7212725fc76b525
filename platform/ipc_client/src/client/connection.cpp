#include "client/connection.h"

#include <algorithm>
#include <asio/post.hpp>
#include <exception>
#include <new>
#include <utility>

#include "base/file.h"
#include "base/reason.h"
#include "base/text.h"
#include "client/receiver.h"
#include "diagnostics.h"
#include "ipc_client/ipc_diagnostics.h"
#include "pipe/pipe_channel.h"
#include "pipe/pipe_path.h"

namespace ipc_client {

using std::chrono::steady_clock;

Connection::Connection(const std::filesystem::path& path, const ConnectionTimes& times,
                       std::shared_ptr<EndSign> predecessor)
    : m_path(path),
      m_times(times),
      m_life(NewLife()),
      m_connectAgain(m_io),
      m_pauses(times),
      m_acknowledgeAt(m_io),
      m_silenceEnds(m_io),
      m_predecessor(std::move(predecessor)),
      m_thread([this] { Run(); }) {}

Connection::~Connection() {
    WaitUntilDone();
    m_io.stop();
    m_thread.join();
    m_end->Give();
}

// What the process posts now must not overtake what its last connection still writes.
void Connection::Run() {
    if (m_predecessor) m_predecessor->Wait(steady_clock::now() + 2 * m_times.linger);
    RunIo(m_io, [this] { Recover(); });
}

bool Connection::IsOpen() const {
    const base::MutexLock lock(m_stateMutex);
    return m_phase == Phase::kOpen;
}

bool Connection::Post(const TagIPCMessageItem& item) {
    if (!IsPostable(item)) return false;
    std::string frame;
    AppendMessage(frame, item);
    return Send(frame);
}

bool Connection::PostTo(std::span<const IpcLife> lives, std::uint64_t event, const TagIPCMessageItem& item) {
    if (!IsPostable(item) || lives.size() > kMaxAddressees) return false;
    std::string frame;
    AppendAddressed(frame, lives, event, item);
    return Send(frame);
}

bool Connection::Send(std::string_view frame) {
    const base::MutexLock lock(m_stateMutex);
    if (m_posted.Bytes() + frame.size() > kMaxPostedBytes) return false;
    m_posted.Add(frame);
    if (!m_isWatching) WatchSilence();
    if (!m_open) return true;
    m_open->Gather(frame);
    return true;
}

void Connection::AddReceiver(Receiver& receiver, const std::vector<int>& msgIds) {
    const base::MutexLock lock(m_routesMutex);
    std::vector<Route> announced;
    for (const int msgId : msgIds) {
        const Route route{receiver.endpointId(), msgId};
        std::vector<Receiver*>& receivers = m_receivers[route];
        if (std::find(receivers.begin(), receivers.end(), &receiver) != receivers.end()) continue;
        receivers.push_back(&receiver);
        if (receivers.size() == 1) announced.push_back(route);
    }
    SendRoutes(FrameType::kAnnounce, announced);
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
        if (m_channel) IntroduceItself();
    } catch (const std::exception& error) {
        if (m_channel) return m_channel->Close(base::Reason(error));
        ConnectLater(base::Reason(error));
    }
}

void Connection::IntroduceItself() {
    Introduction introduction{++m_connections, m_life, m_broker, 0, m_deliveries.Received()};
    {
        const base::MutexLock lock(m_stateMutex);
        introduction.first = m_posted.First();
        m_phase = Phase::kGreeting;
    }
    std::string frame;
    AppendIntroduction(frame, introduction);
    m_channel->Append(frame);
    m_channel->Flush();
}

void Connection::ConnectLater(const std::string& reason) {
    bool changed = false;
    {
        const base::MutexLock lock(m_stateMutex);
        changed = std::exchange(m_phase, Phase::kUnreachable) != Phase::kUnreachable;
    }
    m_changed.NotifyAll();
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

void Connection::FrameArrived(const FrameView& frame) {
    m_wasHeard = true;
    switch (frame.type) {
        case FrameType::kIntroduction:
            return TakeIntroduction(DecodeIntroduction(frame.body));
        case FrameType::kDelivery:
            return TakeDelivery(DecodeDelivery(frame.body));
        case FrameType::kAcknowledge:
            return TakeDone(DecodeNumbers(frame.body));
        case FrameType::kWaiting:
            return TakeWaiting(DecodeNumbers(frame.body));
        case FrameType::kRefusal:
            m_refusal = DecodeRefusal(frame.body).text;
            return;
        case FrameType::kAnswer:
            m_readsOthersOnly = !DecodeAnswer(frame.body);
            return;
        default:
            throw ProtocolError("a broker sends no frames of type " + std::to_string(static_cast<int>(frame.type)));
    }
}

void Connection::TakeIntroduction(const Introduction& broker) {
    if (m_isIntroduced) throw ProtocolError("a second introduction");
    m_isIntroduced = true;
    m_channel->HandshakeEnded();
    m_openedAt = steady_clock::now();
    m_lastReason.clear();
    m_wasAsked = m_readsOthersOnly = false;
    if (broker.first > m_deliveries.Received()) m_deliveries.Skip(broker.first - m_deliveries.Received());
    m_broker = broker.life;
    {
        const base::MutexLock lock(m_routesMutex);
        GoOn(broker);
    }
    m_changed.NotifyAll();
    TellOfChange();
    Log(kIpcLogDetail, base::Utf8FromPath(m_path) + ": connected");
}

// Sends what the broker does not have: the routes, what is done of its deliveries, and what is not done of the posts.
void Connection::GoOn(const Introduction& broker) {
    std::vector<Route> routes;
    for (const auto& [route, receivers] : m_receivers) routes.push_back(route);
    std::string frames;
    AppendRoutes(frames, FrameType::kAnnounce, routes);
    const std::vector<NumberRange> handled = m_deliveries.HandledFrom(broker.first);
    if (!handled.empty()) AppendNumbers(frames, FrameType::kAcknowledge, handled);
    const base::MutexLock lock(m_stateMutex);
    if (broker.received < m_posted.First() || broker.received > m_posted.Next()) {
        throw ProtocolError("it expects message " + std::to_string(broker.received) + ", this side has " +
                            std::to_string(m_posted.First()) + " to " + std::to_string(m_posted.Next()));
    }
    m_posted.WaitAnew();
    frames += m_posted.From(broker.received);
    m_channel->Append(frames);
    m_open = m_channel;
    m_open->Flush();
    m_phase = Phase::kOpen;
}

void Connection::TakeDone(const std::vector<NumberRange>& done) {
    const base::MutexLock lock(m_stateMutex);
    for (const NumberRange& range : done) {
        if (range.behind > m_posted.Next()) throw ProtocolError("messages are done that were never sent");
        m_posted.Done(range, [](std::uint64_t, std::size_t) {});
    }
    m_taken.ForgetBefore(m_posted.First());
    if (m_isEnding) m_changed.NotifyAll();
}

void Connection::TakeWaiting(const std::vector<NumberRange>& waiting) {
    const base::MutexLock lock(m_stateMutex);
    for (const NumberRange& range : waiting) m_posted.Wait(range);
    if (m_isEnding) m_changed.NotifyAll();
}

// While something is not done the broker is expected to say something now and then.
void Connection::WatchSilence() {
    try {
        asio::post(m_io, [this] {
            m_wasHeard = true;
            LookAtSilence();
        });
        m_isWatching = true;
    } catch (const std::bad_alloc&) {  // with the next message
    }
}

void Connection::LookAtSilence() {
    std::shared_ptr<PipeChannel> open;
    if (IsFull()) m_wasHeard = true;  // what it says lies in the pipe
    {
        const base::MutexLock lock(m_stateMutex);
        m_isWatching = !m_posted.IsSettled();
        if (!m_isWatching) return;
        open = m_open;
    }
    if (m_wasHeard || !open) {
        m_wasAsked = false;
    } else if (m_wasAsked && !m_readsOthersOnly) {
        open->Close("the broker does not answer");
    } else {
        std::string question;
        AppendQuestion(question);
        open->Append(question);
        open->Flush();
        m_wasAsked = true;
    }
    m_wasHeard = false;
    m_silenceEnds.expires_after(m_times.silence);
    m_silenceEnds.async_wait([this](std::error_code cancelled) {
        if (!cancelled) LookAtSilence();
    });
}

void Connection::HasRoom(Receiver& receiver) {
    const base::MutexLock lock(m_routesMutex);
    if (m_full.erase(&receiver) != 0 && m_full.empty()) asio::post(m_io, [this] { ReadAgain(); });
}

bool Connection::IsFull() {
    const base::MutexLock lock(m_routesMutex);
    return !m_full.empty();
}

void Connection::ReadAgain() {
    if (m_channel && !IsFull()) m_channel->Resume();
}

void Connection::Closed(std::string_view reason, int) {
    bool wasOpen = false;
    {
        const base::MutexLock lock(m_stateMutex);
        wasOpen = std::exchange(m_open, nullptr) != nullptr;
    }
    m_channel.reset();
    m_isIntroduced = false;
    if (wasOpen) m_pauses.Lost(steady_clock::now() - m_openedAt);
    const std::string refusal = std::exchange(m_refusal, {});
    ConnectLater(base::Utf8FromPath(m_path) + (wasOpen ? ": connection lost: " : ": ") +
                 (refusal.empty() ? std::string(reason) : "the broker refuses it: " + base::OneLine(refusal)));
}

// A broker that has not been tried yet counts as one that takes messages: a process may post one and end.
void Connection::WaitUntilDone() {
    const auto until = steady_clock::now() + m_times.linger;
    std::shared_ptr<PipeChannel> open;
    {
        const base::MutexLock lock(m_stateMutex);
        m_isEnding = true;
        while (m_phase != Phase::kUnreachable && !m_posted.IsSettled()) {
            if (!m_changed.WaitUntil(m_stateMutex, until)) break;
        }
        open = m_open;
    }
    if (!open) return;
    std::string farewell;
    AppendFarewell(farewell);
    open->Append(farewell);
    open->Flush();
    open->WaitWritten(until);
}

}  // namespace ipc_client
