#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ipc_client/ipc_message_item.h"
#include "ipc_client/ipc_sender.h"

// Frames as bytes (docs/protocol.md). Integers are little-endian. Encoders append to a string; decoders take one whole
// frame body and throw ProtocolError, with a text for the log, when it is not what its type promises.
namespace ipc_client {

// Handshake: the first bytes in either direction, before any frame.
inline constexpr char kMagic[4] = {'B', 'P', 'I', 'P'};
inline constexpr std::uint32_t kProtocolVersion = 2;
inline constexpr std::size_t kHelloBytes = 4 + 4;  // magic, version

// A frame is a head, which says how long the body is and what it holds, and the body.
inline constexpr std::size_t kFrameHeadBytes = 4 + 1;  // body length, type

enum class FrameType : std::uint8_t {
    kMessage = 1,       // both directions: one message; to clients that have not introduced themselves only
    kAnnounce = 2,      // to the broker: this connection takes these routes
    kWithdraw = 3,      // to the broker: it takes them no longer
    kIntroduction = 4,  // both directions, a client's first frame: who I am, and what I have of you
    kDelivery = 5,      // to a client: one message and who sent it
    kAcknowledge = 6,   // both directions: these messages are done
    kRefusal = 7,       // to a client, the last frame: why the broker closes
    kAddressed = 8,     // to the broker, from its own process: one message for those who are there now
    kQuestion = 9,      // to the broker: is anybody alive there?
    kAnswer = 10,       // to a client: yes, and whether it is read
    kFarewell = 11,     // to the broker, the last frame: this life ends
    kSkip = 12,         // to the broker: so many messages that would come now are done already
    kWaiting = 13,      // to a client: nobody has announced these messages yet
};

// destination, source, message id, header words 1 to 4, flag, length of the text, length of the payload; then the text
// and the payload themselves.
inline constexpr std::size_t kMessageHeadBytes = 4 + 4 + 4 + 4 * 4 + 1 + 4 + 4;
inline constexpr std::size_t kRouteBytes = 4 + 4;  // endpoint, message id

// Limits. A frame beyond them ends the connection that it came from.
inline constexpr std::size_t kMaxTextBytes = 64 * 1024;
inline constexpr std::size_t kMaxDataBytes = 16 * 1024 * 1024;
inline constexpr std::size_t kMaxMessageBytes = kMessageHeadBytes + kMaxTextBytes + kMaxDataBytes;
inline constexpr std::size_t kMaxAddressees = 1024;
inline constexpr std::size_t kMaxBodyBytes = 4 + kMaxAddressees * sizeof(IpcLife) + 8 + kMaxMessageBytes;

// Queues of a process [bytes]: messages posted and not yet done, and messages that a client has not yet delivered.
inline constexpr std::size_t kMaxPostedBytes = 64 * 1024 * 1024;
inline constexpr std::size_t kMaxUndeliveredBytes = 64 * 1024 * 1024;

// What a queued message counts for beyond its own bytes.
inline constexpr std::size_t kQueuedMessageOverhead = 128;

// What messages are routed by.
struct Route {
    std::int32_t endpointId = 0;
    std::int32_t msgId = 0;
    auto operator<=>(const Route&) const = default;
};

// A life that nobody has had.
IpcLife NewLife();

// "message 0xB20027 to endpoint 0x270000", for log lines.
std::string Describe(Route route);

// A message as it stands in a frame. `text` and `data` are views into the frame's bytes.
struct MessageView {
    std::int32_t destId = 0;
    std::int32_t sourceId = 0;
    std::int32_t msgId = 0;
    std::int32_t headerWord1 = 0;
    std::int32_t headerWord2 = 0;
    std::int32_t headerWord3 = 0;
    std::int32_t headerWord4 = 0;
    std::uint8_t flag = 0;
    std::string_view text;
    std::string_view data;

    Route route() const { return {destId, msgId}; }
};

// The message with everything but its payload: `data` is null and `dataLen` 0.
TagIPCMessageItem HeaderOf(const MessageView& message);

// Whether the item can be a message at all: lengths within the limits, and a payload where one is announced.
bool IsPostable(const TagIPCMessageItem& item);

// What a side that has a life says of itself and of the other one.
struct Introduction {
    std::uint32_t connection = 0;  // a client's: which of its life this is, from 1
    IpcLife life;
    IpcLife known;               // whom it has messages or counts of; zero: nobody
    std::uint64_t first = 0;     // the oldest of its own messages that is not done
    std::uint64_t received = 0;  // the number of the next message that it expects of `known`
};

// Messages by their numbers: [first, behind).
struct NumberRange {
    std::uint64_t first = 0;
    std::uint64_t behind = 0;
    bool operator==(const NumberRange&) const = default;
};

// Where a delivered message comes from: its sender, and its number among all that it has sent.
struct Stamp {
    IpcSender sender;
    std::uint64_t number = 0;
    std::uint64_t event = 0;  // what it tells of; whoever has taken a message of that event passes over it. 0: of none
};

// Why a broker closes a connection. The numbers stand on the wire.
enum class RefusalCode : std::uint32_t {
    kNone = 0,      // it just closes
    kVersion = 1,   // another protocol version
    kProtocol = 2,  // bytes that are no frame, or a frame that is wrong
    kLimit = 3,     // too many connections, or routes, or bytes
    kTime = 4,      // no handshake came in time
    kReplaced = 5,  // the same life has another connection
};

// The peer does not speak the protocol; its connection is to be closed.
class ProtocolError : public std::runtime_error {
public:
    explicit ProtocolError(const std::string& reason, RefusalCode code = RefusalCode::kProtocol)
        : std::runtime_error(reason), m_code(code) {}

    RefusalCode Code() const { return m_code; }

private:
    RefusalCode m_code;
};

struct Refusal {
    std::uint32_t code = 0;  // a newer broker's may have no name here
    std::string_view text;   // UTF-8
};

void AppendHello(std::string& out, std::uint32_t version = kProtocolVersion);
void AppendMessage(std::string& out, const TagIPCMessageItem& item);  // the item must be postable
void AppendMessage(std::string& out, std::string_view messageBody);
void AppendRoutes(std::string& out, FrameType type, std::span<const Route> routes);
void AppendIntroduction(std::string& out, const Introduction& introduction);
void AppendDelivery(std::string& out, const Stamp& stamp, std::string_view messageBody);
std::size_t DeliveryBytes(std::string_view messageBody);  // of that frame
void AppendAddressed(std::string& out, std::span<const IpcLife> lives, std::uint64_t event,
                     const TagIPCMessageItem& item);  // the item must be postable
void AppendNumbers(std::string& out, FrameType type, std::span<const NumberRange> numbers);
void AppendRefusal(std::string& out, RefusalCode code, std::string_view text);
void AppendQuestion(std::string& out);
void AppendAnswer(std::string& out, bool isRead);
void AppendFarewell(std::string& out);
void AppendSkip(std::string& out, std::uint64_t count);

// `hello` has kHelloBytes bytes.
void CheckHello(std::string_view hello);

struct FrameHead {
    FrameType type;
    std::size_t bodyBytes;
};
FrameHead DecodeHead(std::string_view head);  // `head` has kFrameHeadBytes bytes

MessageView DecodeMessage(std::string_view body);
std::vector<Route> DecodeRoutes(std::string_view body);
Introduction DecodeIntroduction(std::string_view body);
std::vector<NumberRange> DecodeNumbers(std::string_view body);
Refusal DecodeRefusal(std::string_view body);
std::uint64_t DecodeSkip(std::string_view body);
bool DecodeAnswer(std::string_view body);  // whether it is read

// `messageBody` is a view into the frame; DecodeMessage takes it.
struct DeliveryView {
    Stamp stamp;
    std::string_view messageBody;
};
DeliveryView DecodeDelivery(std::string_view body);

struct AddressedView {
    std::vector<IpcLife> lives;  // none: everybody
    std::uint64_t event = 0;
    std::string_view messageBody;
};
AddressedView DecodeAddressed(std::string_view body);

// A frame in a FrameReader's buffer; its views live until the next call of Space().
struct FrameView {
    FrameType type;
    std::string_view body;
    std::string_view whole;  // head and body, to be forwarded as it is
};

// Cuts a byte stream into the handshake and frames:
//
//     std::span<char> space = reader.Space();
//     reader.Commit(Receive(space));
//     while (std::optional<FrameView> frame = reader.Next()) Handle(*frame);
//
// The buffer grows with the bytes that came, not with the length that a peer announces.
class FrameReader {
public:
    FrameReader();

    // Room for the next bytes; never empty.
    std::span<char> Space();
    void Commit(std::size_t bytes);

    // Bytes that the buffer has grown by for a frame that is longer than one read.
    std::size_t GrownBytes() const;

    // True once the handshake is complete and right, which stays so; false while bytes are missing. Throws
    // ProtocolError when it is wrong.
    bool TakeHello();

    // The next frame that is complete. Throws ProtocolError as soon as a head is wrong, its body need not be there.
    std::optional<FrameView> Next();

private:
    std::string_view Unread() const { return {m_buffer.get() + m_begin, m_end - m_begin}; }
    void Resize(std::size_t bytes);

    std::unique_ptr<char[]> m_buffer;  // never cleared: what has not been read to takes no memory
    std::size_t m_size = 0;
    std::size_t m_begin = 0;  // first byte not yet taken
    std::size_t m_end = 0;    // behind the last byte that came
    bool m_helloTaken = false;
};

}  // namespace ipc_client

template <>
struct std::hash<ipc_client::Route> {
    std::size_t operator()(const ipc_client::Route& route) const noexcept {
        const auto both = static_cast<std::uint64_t>(static_cast<std::uint32_t>(route.endpointId)) << 32 |
                          static_cast<std::uint32_t>(route.msgId);
        return std::hash<std::uint64_t>()(both);
    }
};

template <>
struct std::hash<IpcLife> {
    std::size_t operator()(const IpcLife& life) const noexcept {  // random bytes are their own hash
        std::size_t bytes = 0;
        std::memcpy(&bytes, life.bytes.data(), sizeof bytes);
        return bytes;
    }
};
