#include "pipe_peer.h"

#include <algorithm>
#include <asio/buffer.hpp>

#include "fuzz_target.h"
#include "ipc_client/ipc_sender.h"

namespace fuzz {

using namespace ipc_client;

namespace {

constexpr std::size_t kMostUnsent = 1024 * 1024;  // [bytes]

std::string RoutesFrame(FrameType type, const std::set<Route>& routes) {
    std::string frame;
    AppendRoutes(frame, type, std::vector<Route>(routes.begin(), routes.end()));
    return frame;
}

}  // namespace

// A life of its own, for which nothing is known of the last one.
void PipePeer::BeginLife() {
    ++m_generation;
    m_hasLeftALife = m_hasLeftALife || m_wasNamed;
    m_wasNamed = false;
    m_life.bytes.fill(static_cast<std::uint8_t>(m_number + 1));
    for (std::size_t i = 0; i < 4; ++i) m_life.bytes[i] = static_cast<std::uint8_t>(m_generation >> (8 * i));
    m_connections = 0;
    m_routes.clear();
    m_announced.clear();
    m_posted = {};
    m_received = {};
    m_unhandled.clear();
    m_serials.clear();
}

void PipePeer::Connect(PipeSocket socket, Manner manner) {
    const bool isSameLife = manner == Manner::kNamed && m_manner == Manner::kNamed;
    if (isSameLife) m_earlier = std::move(m_connection);  // which the broker ends
    Disconnect();
    if (!isSameLife) BeginLife();
    m_manner = manner;
    m_connection.emplace(std::move(socket));
    m_connection->non_blocking(true);
    m_reader.emplace();
    if (manner == Manner::kSilent) return;
    std::string hello;
    AppendHello(hello);
    if (manner == Manner::kNamed) {
        Introduction introduction;
        introduction.connection = ++m_connections;
        introduction.life = m_life;
        introduction.known = m_broker;
        introduction.first = m_posted.First();
        introduction.received = m_received.Next();
        AppendIntroduction(hello, introduction);
    }
    Send(hello);
}

void PipePeer::Disconnect() {
    m_connection.reset();
    m_unsent.clear();
    m_isOpen = false;
}

void PipePeer::Cut() {
    Disconnect();
    m_earlier.reset();
}

void PipePeer::Leave() {
    std::string farewell;
    AppendFarewell(farewell);
    if (m_isOpen) Send(farewell);
    const bool hasLeft = m_isOpen && m_unsent.empty();
    Cut();
    if (!hasLeft) return;
    m_wasNamed = false;
    BeginLife();
}

void PipePeer::Send(std::string_view bytes) {
    if (!m_connection) return;
    m_unsent += bytes;
    m_unsent.erase(0, WriteNow(*m_connection, m_unsent));
}

void PipePeer::Announce(std::uint8_t bits) {
    std::set<Route> routes;
    for (int bit = 0; bit < 8; ++bit) {
        if ((bits >> bit & 1) != 0) routes.insert(RouteOf(bit));
    }
    if (routes.empty()) return;
    m_routes.insert(routes.begin(), routes.end());
    m_announced.insert(routes.begin(), routes.end());
    Append(RoutesFrame(FrameType::kAnnounce, routes));
}

void PipePeer::Withdraw(std::uint8_t bits) {
    std::set<Route> routes;
    for (int bit = 0; bit < 8; ++bit) {
        if ((bits >> bit & 1) != 0) routes.insert(RouteOf(bit));
    }
    if (routes.empty()) return;
    for (const Route& route : routes) m_routes.erase(route);
    Append(RoutesFrame(FrameType::kWithdraw, routes));
}

void PipePeer::Post(Route route, std::int32_t serial, std::size_t bytes, const PipePeer* to) {
    if (m_unsent.size() > kMostUnsent || m_posted.Bytes() > kMostUnsent) return;
    std::string data(bytes, static_cast<char>(serial));
    TagIPCMessageItem item;
    item.destId = route.endpointId;
    item.msgId = route.msgId;
    item.sourceId = m_number;
    item.headerWord1 = serial;
    item.headerWord2 = m_generation;
    if (to != nullptr) {
        item.headerWord3 = to->m_number + 1;
        item.headerWord4 = to->m_generation;
    }
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(bytes);
    std::string frame;
    if (to != nullptr) {
        AppendAddressed(frame, std::vector<IpcLife>{to->m_life}, static_cast<std::uint64_t>(serial), item);
    } else {
        AppendMessage(frame, item);
    }
    if (IsNamed()) m_posted.Add(frame);
    Append(frame);
}

void PipePeer::Ask() {
    std::string question;
    AppendQuestion(question);
    Append(question);
}

bool PipePeer::Receive(bool trusted) {
    bool hasCome = false;
    while (m_connection) {
        const std::span<char> space = m_reader->Space();
        std::error_code error;
        const std::size_t bytes = m_connection->read_some(asio::buffer(space.data(), space.size()), error);
        m_reader->Commit(bytes);
        hasCome = hasCome || bytes != 0;
        if (m_reader->TakeHello()) {
            while (const std::optional<FrameView> frame = m_reader->Next()) TakeFrame(*frame, trusted);
        }
        if (error == asio::error::would_block) break;
        if (error) Disconnect();
    }
    const std::size_t unsent = m_unsent.size();
    Send({});
    return hasCome || m_unsent.size() < unsent;
}

void PipePeer::TakeFrame(const FrameView& frame, bool trusted) {
    switch (frame.type) {
        case FrameType::kIntroduction:
            return TakeIntroduction(DecodeIntroduction(frame.body), trusted);
        case FrameType::kDelivery:
            return TakeDelivery(DecodeDelivery(frame.body), trusted);
        case FrameType::kAcknowledge:
        case FrameType::kWaiting:
            return TakeNumbers(frame.type, frame.body, trusted);
        case FrameType::kMessage:
            Require(!trusted || m_manner == Manner::kAnonymous, "who has a name gets deliveries");
            if (trusted) Check(DecodeMessage(frame.body));
            return;
        case FrameType::kRefusal:
            DecodeRefusal(frame.body);
            return;
        case FrameType::kAnswer:
            DecodeAnswer(frame.body);
            return;
        default:
            Require(false, "a broker sends no such frame");
    }
}

void PipePeer::TakeIntroduction(const Introduction& broker, bool trusted) {
    if (!trusted) return;
    Require(IsNamed() && !m_isOpen, "a broker introduces itself once, and to those with a name");
    Require(broker.known == m_life || broker.known == IpcLife(), "a broker knows this life or none");
    Require(m_broker == broker.life || m_broker == IpcLife(), "there is one broker");
    Require(broker.received >= m_posted.First() && broker.received <= m_posted.Next(),
            "a broker expects a message that there is");
    m_broker = broker.life;
    m_wasNamed = true;
    m_isOpen = true;
    std::set<Route> routes = m_routes;
    if (m_number == kService) {
        for (const int msgId : {kIpcPeerArrived, kIpcPeerLeft}) routes.insert({0, msgId});
    }
    std::string frames = RoutesFrame(FrameType::kAnnounce, routes);
    if (const auto handled = m_received.DoneFrom(broker.first); !handled.empty()) {
        AppendNumbers(frames, FrameType::kAcknowledge, handled);
    }
    for (Unhandled& unhandled : m_unhandled) {
        if (unhandled.delivery < broker.first) unhandled.message = {};  // given up
    }
    if (broker.first > m_received.Next()) m_received.Skip(broker.first - m_received.Next());
    m_posted.WaitAnew();
    Send(frames + m_posted.From(broker.received));
}

void PipePeer::TakeDelivery(const DeliveryView& delivery, bool trusted) {
    const MessageView message = DecodeMessage(delivery.messageBody);
    if (!trusted) return;
    Require(m_isOpen, "deliveries come after the introduction");
    const IpcLife& sender = delivery.stamp.sender.life;
    const bool isNews = message.msgId < 0;  // of the broker itself, about the sender
    const MessageId id = isNews ? MessageId() : MessageId{sender, delivery.stamp.number};
    m_unhandled.push_back({m_received.Begin(), id});
    if (isNews) return Require(m_number == kService, "the broker's news are for the service");
    Require(sender == IpcLife() || sender.bytes[4] == message.sourceId + 1, "a sender is who it says");
    const std::int32_t event = message.headerWord3 == 0 ? 0 : message.headerWord1;
    Require(delivery.stamp.event == static_cast<std::uint64_t>(event), "an event comes as it was posted");
    Check(message);
}

void PipePeer::TakeNumbers(FrameType type, std::string_view body, bool trusted) {
    const std::vector<NumberRange> numbers = DecodeNumbers(body);
    if (!trusted) return;
    for (const NumberRange& range : numbers) {
        Require(m_isOpen && range.behind <= m_posted.Next(), "what is done, or waits, was posted");
        if (type == FrameType::kWaiting) {
            m_posted.Wait(range);
        } else {
            m_posted.Done(range, [&](std::uint64_t number, std::size_t) { m_done.push_back({m_life, number}); });
        }
    }
}

void PipePeer::Check(const MessageView& message) {
    const std::int32_t serial = message.headerWord1;
    Require(message.sourceId == kService || m_number == kService || message.sourceId == m_number, "the pipe is a star");
    Require(m_announced.count(message.route()) != 0, "only what was announced comes");
    Require(message.headerWord3 == 0 || (message.headerWord3 == m_number + 1 && message.headerWord4 == m_generation),
            "what is addressed comes to whom it is for");
    const bool isWhole =
        std::ranges::all_of(message.data, [&](char byte) { return byte == static_cast<char>(serial); });
    Require(isWhole, "a payload comes as it was posted");
    std::int32_t& last = m_serials[{{message.sourceId, message.headerWord2}, message.route()}];
    Require(serial > last, "messages come once and in order");
    last = serial;
}

bool PipePeer::Handle(std::size_t count, bool newestFirst) {
    for (; count != 0 && !m_unhandled.empty(); --count) {
        m_received.Release((newestFirst ? m_unhandled.back() : m_unhandled.front()).delivery);
        newestFirst ? m_unhandled.pop_back() : m_unhandled.pop_front();
    }
    const std::vector<NumberRange> handled = m_received.TakeDone();
    if (handled.empty() || !m_isOpen) return false;  // the next introduction will tell
    std::string frame;
    AppendNumbers(frame, FrameType::kAcknowledge, handled);
    Send(frame);
    return true;
}

bool PipePeer::Holds(const MessageId& message) const {
    return std::ranges::any_of(m_unhandled, [&](const Unhandled& each) { return each.message == message; });
}

}  // namespace fuzz
