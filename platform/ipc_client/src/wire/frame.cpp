#include "wire/frame.h"

#include <cstdio>
#include <cstring>

namespace ipc_client {
namespace {

void AppendUInt32(std::string& out, std::uint32_t value) {
    const char bytes[4] = {static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16),
                           static_cast<char>(value >> 24)};
    out.append(bytes, sizeof bytes);
}

void AppendInt32(std::string& out, std::int32_t value) { AppendUInt32(out, static_cast<std::uint32_t>(value)); }

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
        std::uint32_t value = 0;
        for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<std::uint8_t>(field[static_cast<std::size_t>(i)]);
        return value;
    }
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

constexpr std::size_t kReadBytes = 64 * 1024;  // room offered for one read, at least half of it

}  // namespace

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

void AppendMessage(std::string& out, const TagIPCMessageItem& item) {
    const auto dataBytes = static_cast<std::size_t>(item.dataLen);
    const std::size_t bodyBytes = kMessageHeadBytes + item.text.size() + dataBytes;
    AppendHead(out, FrameType::kMessage, bodyBytes);
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
                        std::to_string(kProtocolVersion));
}

FrameHead DecodeHead(std::string_view head) {
    FieldReader reader(head);
    const std::size_t bodyBytes = reader.UInt32();
    const std::uint8_t type = reader.UInt8();
    if (type < static_cast<std::uint8_t>(FrameType::kMessage) ||
        type > static_cast<std::uint8_t>(FrameType::kWithdraw)) {
        throw ProtocolError("unknown frame type " + std::to_string(type));
    }
    CheckLength("a frame", bodyBytes, kMaxBodyBytes);
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
    if (body.empty() || body.size() % kRouteBytes != 0) {
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

FrameReader::FrameReader() : m_buffer(kReadBytes) {}

std::span<char> FrameReader::Space() {
    if (m_begin == m_end) {
        m_begin = m_end = 0;
        if (m_buffer.size() > 16 * kReadBytes) m_buffer = std::vector<char>(kReadBytes);
    }
    if (m_buffer.size() - m_end < kReadBytes / 2 && m_begin != 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
    }
    if (m_buffer.size() - m_end < kReadBytes / 2) m_buffer.resize(m_buffer.size() * 2);
    return std::span(m_buffer).subspan(m_end);
}

void FrameReader::Commit(std::size_t bytes) { m_end += bytes; }

std::size_t FrameReader::GrownBytes() const { return m_buffer.size() - kReadBytes; }

bool FrameReader::TakeHello() {
    if (m_helloTaken) return true;
    if (Unread().size() < kHelloBytes) return false;
    CheckHello(Unread().substr(0, kHelloBytes));
    m_begin += kHelloBytes;
    m_helloTaken = true;
    return true;
}

std::optional<FrameView> FrameReader::Next() {
    const std::string_view unread = Unread();
    if (unread.size() < kFrameHeadBytes) return std::nullopt;
    const FrameHead head = DecodeHead(unread.substr(0, kFrameHeadBytes));
    const std::size_t wholeBytes = kFrameHeadBytes + head.bodyBytes;
    if (unread.size() < wholeBytes) return std::nullopt;
    m_begin += wholeBytes;
    return FrameView{head.type, unread.substr(kFrameHeadBytes, head.bodyBytes), unread.substr(0, wholeBytes)};
}

}  // namespace ipc_client
