// How messages find their way: the other half of BrokerLoop.

#include <algorithm>
#include <new>

#include "broker/broker_loop.h"
#include "diagnostics.h"

namespace ipc_client {
namespace {

constexpr PendingMessages::Sender kService = 0;  // whatever connection it has; no peer has this number

void CheckIsNotBrokers(Route route) {
    if (route.msgId == kIpcPeerArrived || route.msgId == kIpcPeerLeft) {
        throw ProtocolError("a message that only the broker sends");
    }
}

bool IsOfArrivals(Route route) { return route.msgId == kIpcPeerArrived; }

}  // namespace

void BrokerLoop::RouteMessage(BrokerPeer& sender, std::string_view messageBody) {
    const Route route = DecodeMessage(messageBody).route();
    CheckIsNotBrokers(route);
    Dispatch(sender, route, messageBody, [&](const Origin& origin) {
        if (!QueueToAll(sender, route, origin, messageBody, nullptr)) Keep(sender, route, origin, messageBody);
    });
}

void BrokerLoop::RouteAddressed(BrokerPeer& sender, const AddressedView& addressed) {
    const Route route = DecodeMessage(addressed.messageBody).route();
    CheckIsNotBrokers(route);
    if (!sender.IsOwn()) throw ProtocolError("an addressed message, which only the broker's own process may send");
    Dispatch(sender, route, addressed.messageBody, [&](Origin origin) {
        origin.stamp.event = addressed.event;
        QueueToAll(sender, route, origin, addressed.messageBody, addressed.lives.empty() ? nullptr : &addressed.lives);
    });
}

// Gives the message its number and has `send` send it. It is done when nobody holds it any more.
template <typename Send>
void BrokerLoop::Dispatch(BrokerPeer& sender, Route route, std::string_view messageBody, const Send& send) {
    Origin origin{sender.Number(), false, {sender.Identity()}};
    if (sender.IsNamed()) origin.stamp.number = sender.Posted().Begin();
    try {
        send(origin);
    } catch (const std::bad_alloc&) {
        m_lines.Write(kIpcLogEvent, sender.Identity().process, [&] {
            return sender.Name() + ": no memory, lost " + Describe(route) + " of " +
                   std::to_string(messageBody.size()) + " bytes";
        });
    }
    Done(origin);
}

// Whether anybody listens to it: only to these lives, if any are named.
bool BrokerLoop::QueueToAll(BrokerPeer& sender, Route route, const Origin& origin, std::string_view messageBody,
                            const std::vector<IpcLife>* lives) {
    const auto entry = m_receivers.find(route);
    if (entry == m_receivers.end()) return false;
    bool isTaken = false;
    for (BrokerPeer* receiver : entry->second) {
        if (!sender.MayTalkTo(*receiver)) continue;
        if (lives != nullptr && std::find(lives->begin(), lives->end(), receiver->Identity().life) == lives->end())
            continue;
        Queue(&sender, *receiver, origin, messageBody);
        isTaken = true;
    }
    return isTaken;
}

void BrokerLoop::Queue(BrokerPeer* sender, BrokerPeer& receiver, Origin origin, std::string_view messageBody) {
    // What a process sends to itself is acknowledged on the connection that would not be read for it.
    origin.isCharged = sender != nullptr && !sender->IsOwn() && (sender != &receiver || !sender->IsNamed());
    const std::size_t bytes = receiver.Deliver(origin, messageBody);
    Touch(receiver);
    if (bytes == 0) return;
    if (!receiver.IsOwn()) m_queuedBytes += bytes;
    if (sender == nullptr) return;
    if (sender->IsNamed()) sender->Posted().Hold(origin.stamp.number);
    if (origin.isCharged) sender->Owe(bytes);
}

void BrokerLoop::Keep(BrokerPeer& sender, Route route, const Origin& origin, std::string_view messageBody) {
    const auto dropped = m_pending.Add(route, sender.IsOwn() ? kService : sender.Number(), origin, messageBody);
    if (sender.IsNamed()) {
        sender.Posted().Hold(origin.stamp.number);
        sender.Waiting().push_back({origin.stamp.number, origin.stamp.number + 1});
        Touch(sender);
    }
    for (const PendingMessages::Dropped& message : dropped) {
        Done(message.origin);
        if (!IsWorthALine(message.soFar)) continue;
        m_lines.Write(kIpcLogEvent, message.origin.stamp.sender.process, [&] {
            return "broker: nobody takes " + Describe(message.route) +
                   ", its sender's queue is full: the oldest dropped (" + std::to_string(message.soFar) + " so far)";
        });
    }
}

void BrokerLoop::Announce(BrokerPeer& peer, const std::vector<Route>& routes) {
    if (peer.ReplacesRoutes()) {
        std::vector<Route> withdrawn;
        for (const Route& route : peer.Routes()) {
            if (std::find(routes.begin(), routes.end(), route) == routes.end()) withdrawn.push_back(route);
        }
        Withdraw(peer, withdrawn);
    }
    for (const Route& route : routes) {
        if (!peer.Routes().insert(route).second) continue;
        if (peer.Routes().size() > m_limits.routesPerConnection) {
            throw ProtocolError("it announces more than " + std::to_string(m_limits.routesPerConnection) + " routes",
                                RefusalCode::kLimit);
        }
        m_receivers[route].push_back(&peer);
    }
    if (!peer.IsOwn() && !routes.empty() && peer.Arrives()) {
        TellOfArrival(peer);
    }
    if (peer.IsOwn() && std::any_of(routes.begin(), routes.end(), IsOfArrivals)) TellOfAll();
    HandOver(peer, routes);
}

// A service that begins to listen hears of those who came before it, too.
void BrokerLoop::TellOfAll() {
    for (const auto& [number, peer] : m_peers) {
        if (peer->HasArrived()) TellOfArrival(*peer);
    }
}

void BrokerLoop::TellOfArrival(const BrokerPeer& peer) {
    TellService(peer, kIpcPeerArrived, std::string_view(peer.MayHaveMissed() ? "\1" : "\0", 1));
}

// What waits for these routes and may go to the one that has announced them.
void BrokerLoop::HandOver(BrokerPeer& peer, const std::vector<Route>& routes) {
    // As MayTalkTo.
    const auto isFor = [&](unsigned sender) { return peer.IsOwn() || sender == kService || sender == peer.Number(); };
    for (const PendingMessages::Taken& taken : m_pending.Take(routes, isFor)) {
        Queue(FindPeer(taken.origin.peer), peer, taken.origin, taken.body);
        Done(taken.origin);
    }
}

void BrokerLoop::Withdraw(BrokerPeer& peer, const std::vector<Route>& routes) {
    for (const Route& route : routes) {
        if (peer.Routes().erase(route) != 0) ForgetReceiver(peer, route);
    }
}

void BrokerLoop::ForgetReceiver(BrokerPeer& peer, Route route) {
    const auto entry = m_receivers.find(route);
    if (entry == m_receivers.end()) return;
    std::erase(entry->second, &peer);
    if (entry->second.empty()) m_receivers.erase(entry);
}

// Tells those of the service's process who listen to what becomes of others.
void BrokerLoop::TellService(const BrokerPeer& about, int msgId, std::string_view payload) {
    const Origin origin{0, false, {about.Identity()}};
    for (const auto& [number, peer] : m_peers) {
        if (!peer->IsOwn()) continue;
        for (const Route& route : peer->Routes()) {
            if (route.msgId != msgId) continue;
            TagIPCMessageItem item;
            item.destId = route.endpointId;
            item.msgId = msgId;
            item.data = const_cast<char*>(payload.data());
            item.dataLen = static_cast<std::int32_t>(payload.size());
            std::string frame;
            AppendMessage(frame, item);
            Queue(nullptr, *peer, origin, std::string_view(frame).substr(kFrameHeadBytes));
        }
    }
}

void BrokerLoop::TakeHandled(BrokerPeer& receiver, const std::vector<NumberRange>& handled) {
    for (const NumberRange& range : handled) {
        if (!receiver.IsNamed() || range.behind > receiver.NextDelivery()) {
            throw ProtocolError("it acknowledges what it was never sent");
        }
        TakeOut(receiver, range);
    }
}

void BrokerLoop::TakeOut(BrokerPeer& receiver, NumberRange range) {
    BrokerPeer* sender = nullptr;  // of the message before: mostly of the next one, too
    receiver.TakeOut(range, [&](const BrokerPeer::Handled& message) {
        if (sender == nullptr || sender->Number() != message.peer) sender = FindPeer(message.peer);
        Handled(receiver, sender, message);
    });
}

void BrokerLoop::TakeOutWritten(BrokerPeer& receiver) {
    receiver.TakeOutWritten(receiver.Session()->Backlog(), [&](const BrokerPeer::Handled& message) {
        Handled(receiver, FindPeer(message.peer), message);
    });
}

void BrokerLoop::Handled(const BrokerPeer& receiver, BrokerPeer* sender, const BrokerPeer::Handled& message) {
    if (!receiver.IsOwn()) m_queuedBytes -= message.bytes;
    if (sender == nullptr) return;
    if (message.isCharged) sender->Settle(message.bytes);
    if (sender->IsNamed()) Done(*sender, message.number);
}

void BrokerLoop::Done(const Origin& origin) {
    BrokerPeer* const sender = FindPeer(origin.peer);
    if (sender != nullptr && sender->IsNamed()) Done(*sender, origin.stamp.number);
}

void BrokerLoop::Done(BrokerPeer& sender, std::uint64_t number) {
    sender.Posted().Release(number);
    if (sender.Posted().HasDone()) Touch(sender);
}

void BrokerLoop::Skip(BrokerPeer& sender, std::uint64_t count) {
    constexpr std::uint64_t kMost = 1 << 22;  // more than the messages that a sender keeps
    const std::uint64_t outstanding = sender.Posted().Next() - sender.Posted().First();
    if (!sender.IsNamed() || count > kMost || outstanding > kMost) throw ProtocolError("it skips too much");
    sender.Posted().Skip(count);
}

void BrokerLoop::Answer(BrokerPeer& peer) {
    std::string answer;
    AppendAnswer(answer, true);
    peer.Session()->Append(answer);
    Touch(peer);
}

void BrokerLoop::Touch(BrokerPeer& peer) {
    if (peer.Touch()) m_touched.push_back(peer.Number());
}

void BrokerLoop::FlushTouched() {
    while (!m_touched.empty()) {
        const unsigned number = m_touched.back();
        m_touched.pop_back();
        if (BrokerPeer* const peer = FindPeer(number)) Flush(*peer);
    }
}

void BrokerLoop::Flush(BrokerPeer& peer) {
    const unsigned number = peer.Number();
    peer.Untouch();
    peer.Send();
    if (peer.LacksMemory()) return GiveUpAndClose(peer, "no memory for what is sent to it", RefusalCode::kLimit);
    if (peer.Session() == nullptr) return;
    AppendNews(peer);
    peer.Session()->Flush();  // may end the session, and with it the peer
    BrokerPeer* const stays = FindPeer(number);
    if (stays != nullptr && stays->Session() != nullptr && !stays->IsNamed()) TakeOutWritten(*stays);
}

// All of it, to one that may not have heard.
void BrokerLoop::TellWaitingAnew(BrokerPeer& sender) {
    sender.Waiting() = m_pending.NumbersOf(sender.Number(), sender.IsOwn() ? kService : sender.Number());
}

// What a sender is to know of its messages.
void BrokerLoop::AppendNews(BrokerPeer& sender) {
    if (!sender.IsNamed()) return;
    std::string frames;
    if (!sender.Waiting().empty()) AppendNumbers(frames, FrameType::kWaiting, std::exchange(sender.Waiting(), {}));
    if (sender.Posted().HasDone()) AppendNumbers(frames, FrameType::kAcknowledge, sender.Posted().TakeDone());
    if (!frames.empty()) sender.Session()->Append(frames);
}

}  // namespace ipc_client
