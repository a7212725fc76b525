#include "wire/frame.h"

#include <cstdio>
#include <cstring>
#include <random>

namespace ipc_client {
namespace {

void AppendUInt32(std::string& out, std::uint32_t value) {
    const char bytes[4] = {static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16),
                           static_cast<char>(value >> 24)};
    out.append(bytes, sizeof bytes);
}

void AppendInt32(std::string& out, std::int32_t value) { AppendUInt32(out, static_cast<std::uint32_t>(value)); }

void AppendUInt64(std::string& out, std::uint64_t value) {
    AppendUInt32(out, static_cast<std::uint32_t>(value));
    AppendUInt32(out, static_cast<std::uint32_t>(value >> 32));
}

void AppendLife(std::string& out, const IpcLife& life) {
    out.append(reinterpret_cast<const char*>(life.bytes.data()), life.bytes.size());
}

void AppendHead(std::string& out, FrameType type, std::size_t bodyBytes) {
    AppendUInt32(out, static_cast<std::uint32_t>(bodyBytes));
    out.push_back(static_cast<char>(type));
}

// Takes fields from the front of bytes whose length the caller has checked.
class FieldReader {
public:
    explicit FieldReader(std::string_view bytes) : m_bytes(bytes) {}

    std::string_view Bytes(std::size_t count) {
        const std::string_view field = m_bytes.substr(0, count);
        m_bytes.remove_prefix(count);
        return field;
    }
    std::uint8_t UInt8() { return static_cast<std::uint8_t>(Bytes(1)[0]); }
    std::uint32_t UInt32() {
        const std::string_view field = Bytes(4);
        const auto byte = [&](std::size_t i) { return std::uint32_t{static_cast<std::uint8_t>(field[i])}; };
        return byte(0) | byte(1) << 8 | byte(2) << 16 | byte(3) << 24;
    }
    std::uint64_t UInt64() {
        const std::uint64_t low = UInt32();
        return low | static_cast<std::uint64_t>(UInt32()) << 32;
    }
    IpcLife Life() {
        IpcLife life;
        std::memcpy(life.bytes.data(), Bytes(life.bytes.size()).data(), life.bytes.size());
        return life;
    }
    std::string_view Rest() { return Bytes(m_bytes.size()); }
    std::int32_t Int32() { return static_cast<std::int32_t>(UInt32()); }
    std::size_t Left() const { return m_bytes.size(); }

private:
    std::string_view m_bytes;
};

void CheckLength(const char* what, std::size_t length, std::size_t limit) {
    if (length <= limit) return;
    throw ProtocolError(std::string(what) + " of " + std::to_string(length) + " bytes is over the limit of " +
                        std::to_string(limit));
}

void CheckBodyBytes(const char* what, std::string_view body, std::size_t bytes) {
    if (body.size() == bytes) return;
    throw ProtocolError(std::string(what) + " of " + std::to_string(body.size()) + " bytes, not " +
                        std::to_string(bytes));
}

void CheckLeastBytes(const char* what, std::string_view body, std::size_t bytes) {
    if (body.size() >= bytes) return;
    throw ProtocolError(std::string(what) + " of " + std::to_string(body.size()) + " bytes is too short");
}

constexpr std::size_t kIntroductionBytes = 4 + 4 + 16 + 16 + 8 + 8;  // features, connection, lives, first, received
constexpr std::size_t kStampBytes = 16 + 8 + 8 + 4 + 4;              // life, number, event, process, user
constexpr std::size_t kRangeBytes = 8 + 8;                           // first, behind

}  // namespace

IpcLife NewLife() {
    std::random_device random;
    IpcLife life;
    for (std::uint8_t& byte : life.bytes) byte = static_cast<std::uint8_t>(random());
    return life;
}

std::string Describe(Route route) {
    char text[64];
    std::snprintf(text, sizeof text, "message 0x%X to endpoint 0x%X", static_cast<unsigned>(route.msgId),
                  static_cast<unsigned>(route.endpointId));
    return text;
}

TagIPCMessageItem HeaderOf(const MessageView& message) {
    TagIPCMessageItem item;
    item.text = message.text;
    item.destId = message.destId;
    item.sourceId = message.sourceId;
    item.msgId = message.msgId;
    item.headerWord1 = message.headerWord1;
    item.headerWord2 = message.headerWord2;
    item.headerWord3 = message.headerWord3;
    item.headerWord4 = message.headerWord4;
    item.flag = message.flag;
    return item;
}

bool IsPostable(const TagIPCMessageItem& item) {
    if (item.dataLen < 0 || static_cast<std::size_t>(item.dataLen) > kMaxDataBytes) return false;
    return (item.dataLen == 0 || item.data != nullptr) && item.text.size() <= kMaxTextBytes;
}

void AppendHello(std::string& out, std::uint32_t version) {
    out.append(kMagic, sizeof kMagic);
    AppendUInt32(out, version);
}

namespace {

std::size_t MessageBytes(const TagIPCMessageItem& item) {
    return kMessageHeadBytes + item.text.size() + static_cast<std::size_t>(item.dataLen);
}

void AppendMessageBody(std::string& out, const TagIPCMessageItem& item) {
    const auto dataBytes = static_cast<std::size_t>(item.dataLen);
    AppendInt32(out, item.destId);
    AppendInt32(out, item.sourceId);
    AppendInt32(out, item.msgId);
    AppendInt32(out, item.headerWord1);
    AppendInt32(out, item.headerWord2);
    AppendInt32(out, item.headerWord3);
    AppendInt32(out, item.headerWord4);
    out.push_back(static_cast<char>(item.flag));
    AppendUInt32(out, static_cast<std::uint32_t>(item.text.size()));
    AppendUInt32(out, static_cast<std::uint32_t>(dataBytes));
    out.append(item.text);
    if (dataBytes != 0) out.append(item.data, dataBytes);
}

}  // namespace

void AppendMessage(std::string& out, const TagIPCMessageItem& item) {
    AppendHead(out, FrameType::kMessage, MessageBytes(item));
    AppendMessageBody(out, item);
}

void AppendMessage(std::string& out, std::string_view messageBody) {
    AppendHead(out, FrameType::kMessage, messageBody.size());
    out.append(messageBody);
}

void AppendIntroduction(std::string& out, const Introduction& introduction) {
    constexpr std::uint32_t kFeatures = 0;  // none beyond the version's own
    AppendHead(out, FrameType::kIntroduction, kIntroductionBytes);
    AppendUInt32(out, kFeatures);
    AppendUInt32(out, introduction.connection);
    AppendLife(out, introduction.life);
    AppendLife(out, introduction.known);
    AppendUInt64(out, introduction.first);
    AppendUInt64(out, introduction.received);
}

void AppendDelivery(std::string& out, const Stamp& stamp, std::string_view messageBody) {
    AppendHead(out, FrameType::kDelivery, kStampBytes + messageBody.size());
    AppendLife(out, stamp.sender.life);
    AppendUInt64(out, stamp.number);
    AppendUInt64(out, stamp.event);
    AppendUInt32(out, stamp.sender.process);
    AppendUInt32(out, stamp.sender.user);
    out.append(messageBody);
}

std::size_t DeliveryBytes(std::string_view messageBody) { return kFrameHeadBytes + kStampBytes + messageBody.size(); }

void AppendAddressed(std::string& out, std::span<const IpcLife> lives, std::uint64_t event,
                     const TagIPCMessageItem& item) {
    AppendHead(out, FrameType::kAddressed, 4 + lives.size() * sizeof(IpcLife) + 8 + MessageBytes(item));
    AppendUInt32(out, static_cast<std::uint32_t>(lives.size()));
    for (const IpcLife& life : lives) AppendLife(out, life);
    AppendUInt64(out, event);
    AppendMessageBody(out, item);
}

void AppendNumbers(std::string& out, FrameType type, std::span<const NumberRange> numbers) {
    AppendHead(out, type, numbers.size() * kRangeBytes);
    for (const NumberRange& range : numbers) {
        AppendUInt64(out, range.first);
        AppendUInt64(out, range.behind);
    }
}

void AppendRefusal(std::string& out, RefusalCode code, std::string_view text) {
    AppendHead(out, FrameType::kRefusal, 4 + text.size());
    AppendUInt32(out, static_cast<std::uint32_t>(code));
    out.append(text);
}

void AppendQuestion(std::string& out) { AppendHead(out, FrameType::kQuestion, 0); }

void AppendAnswer(std::string& out, bool isRead) {
    AppendHead(out, FrameType::kAnswer, 1);
    out.push_back(isRead ? '\1' : '\0');
}

void AppendFarewell(std::string& out) { AppendHead(out, FrameType::kFarewell, 0); }

void AppendSkip(std::string& out, std::uint64_t count) {
    AppendHead(out, FrameType::kSkip, 8);
    AppendUInt64(out, count);
}

void AppendRoutes(std::string& out, FrameType type, std::span<const Route> routes) {
    AppendHead(out, type, routes.size() * kRouteBytes);
    for (const Route& route : routes) {
        AppendInt32(out, route.endpointId);
        AppendInt32(out, route.msgId);
    }
}

void CheckHello(std::string_view hello) {
    FieldReader reader(hello);
    if (reader.Bytes(sizeof kMagic) != std::string_view(kMagic, sizeof kMagic)) {
        throw ProtocolError("the handshake does not begin with the magic bytes");
    }
    const std::uint32_t version = reader.UInt32();
    if (version == kProtocolVersion) return;
    throw ProtocolError("the other side speaks protocol version " + std::to_string(version) + ", this one " +
                            std::to_string(kProtocolVersion),
                        RefusalCode::kVersion);
}

FrameHead DecodeHead(std::string_view head) {
    FieldReader reader(head);
    const std::size_t bodyBytes = reader.UInt32();
    const std::uint8_t type = reader.UInt8();
    if (type < static_cast<std::uint8_t>(FrameType::kMessage) ||
        type > static_cast<std::uint8_t>(FrameType::kWaiting)) {
        throw ProtocolError("unknown frame type " + std::to_string(type));
    }
    const bool isMessage = type == static_cast<std::uint8_t>(FrameType::kMessage);
    CheckLength("a frame", bodyBytes, isMessage ? kMaxMessageBytes : kMaxBodyBytes);
    return {static_cast<FrameType>(type), bodyBytes};
}

MessageView DecodeMessage(std::string_view body) {
    if (body.size() < kMessageHeadBytes) {
        throw ProtocolError("a message frame of " + std::to_string(body.size()) + " bytes is too short");
    }
    FieldReader reader(body);
    MessageView message;
    message.destId = reader.Int32();
    message.sourceId = reader.Int32();
    message.msgId = reader.Int32();
    message.headerWord1 = reader.Int32();
    message.headerWord2 = reader.Int32();
    message.headerWord3 = reader.Int32();
    message.headerWord4 = reader.Int32();
    message.flag = reader.UInt8();
    const std::size_t textBytes = reader.UInt32();
    const std::size_t dataBytes = reader.UInt32();
    CheckLength("a message text", textBytes, kMaxTextBytes);
    CheckLength("a payload", dataBytes, kMaxDataBytes);
    if (textBytes + dataBytes != reader.Left()) {
        throw ProtocolError("a message announces " + std::to_string(textBytes + dataBytes) +
                            " bytes of text and payload, its frame holds " + std::to_string(reader.Left()));
    }
    message.text = reader.Bytes(textBytes);
    message.data = reader.Bytes(dataBytes);
    return message;
}

std::vector<Route> DecodeRoutes(std::string_view body) {
    if (body.size() % kRouteBytes != 0) {
        throw ProtocolError("a list of routes of " + std::to_string(body.size()) + " bytes");
    }
    FieldReader reader(body);
    std::vector<Route> routes;
    routes.reserve(body.size() / kRouteBytes);
    while (reader.Left() != 0) {
        const std::int32_t endpointId = reader.Int32();
        routes.push_back({endpointId, reader.Int32()});
    }
    return routes;
}

Introduction DecodeIntroduction(std::string_view body) {
    CheckBodyBytes("an introduction", body, kIntroductionBytes);
    FieldReader reader(body);
    reader.UInt32();  // features: what this version does not know, it does not use
    Introduction introduction;
    introduction.connection = reader.UInt32();
    introduction.life = reader.Life();
    introduction.known = reader.Life();
    introduction.first = reader.UInt64();
    introduction.received = reader.UInt64();
    if (introduction.life == IpcLife()) throw ProtocolError("an introduction of nobody");
    return introduction;
}

DeliveryView DecodeDelivery(std::string_view body) {
    CheckLeastBytes("a delivery", body, kStampBytes);
    FieldReader reader(body);
    DeliveryView delivery;
    delivery.stamp.sender.life = reader.Life();
    delivery.stamp.number = reader.UInt64();
    delivery.stamp.event = reader.UInt64();
    delivery.stamp.sender.process = reader.UInt32();
    delivery.stamp.sender.user = reader.UInt32();
    delivery.messageBody = reader.Rest();
    return delivery;
}

AddressedView DecodeAddressed(std::string_view body) {
    CheckLeastBytes("an addressed message", body, 4);
    FieldReader reader(body);
    const std::size_t count = reader.UInt32();
    CheckLength("a list of addressees", count, kMaxAddressees);
    CheckLeastBytes("an addressed message", body, 4 + count * sizeof(IpcLife) + 8);
    AddressedView addressed;
    addressed.lives.reserve(count);
    for (std::size_t i = 0; i < count; ++i) addressed.lives.push_back(reader.Life());
    addressed.event = reader.UInt64();
    addressed.messageBody = reader.Rest();
    return addressed;
}

std::vector<NumberRange> DecodeNumbers(std::string_view body) {
    if (body.empty() || body.size() % kRangeBytes != 0) {
        throw ProtocolError("a list of numbers of " + std::to_string(body.size()) + " bytes");
    }
    FieldReader reader(body);
    std::vector<NumberRange> numbers;
    numbers.reserve(body.size() / kRangeBytes);
    while (reader.Left() != 0) {
        const std::uint64_t first = reader.UInt64();
        numbers.push_back({first, reader.UInt64()});
        if (numbers.back().first >= numbers.back().behind) throw ProtocolError("a list of numbers with an empty range");
    }
    return numbers;
}

Refusal DecodeRefusal(std::string_view body) {
    CheckLeastBytes("a refusal", body, 4);
    FieldReader reader(body);
    const std::uint32_t code = reader.UInt32();
    return {code, reader.Rest()};
}

std::uint64_t DecodeSkip(std::string_view body) {
    CheckBodyBytes("a skip", body, 8);
    return FieldReader(body).UInt64();
}

bool DecodeAnswer(std::string_view body) {
    CheckBodyBytes("an answer", body, 1);
    return body[0] != 0;
}

}  // namespace ipc_client
