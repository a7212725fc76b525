#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ipc_client/ipc_message_item.h"
#include "wire/protocol.h"

// Frames as bytes (docs/protocol.md). Encoders append to a string; decoders take one whole frame body and throw
// ProtocolError, with a text for the log, when it is not what its type promises.
namespace ipc_client {

// The peer does not speak the protocol; its connection is to be closed.
class ProtocolError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What messages are routed by.
struct Route {
    std::int32_t endpointId = 0;
    std::int32_t msgId = 0;
    auto operator<=>(const Route&) const = default;
};

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

// Whether the item can be a message at all: lengths within the limits, and a payload where one is announced.
bool IsPostable(const TagIPCMessageItem& item);

void AppendHello(std::string& out, std::uint32_t version = kProtocolVersion);
void AppendMessage(std::string& out, const TagIPCMessageItem& item);  // the item must be postable
void AppendRoutes(std::string& out, FrameType type, std::span<const Route> routes);

// `hello` has kHelloBytes bytes.
void CheckHello(std::string_view hello);

struct FrameHead {
    FrameType type;
    std::size_t bodyBytes;
};
FrameHead DecodeHead(std::string_view head);  // `head` has kFrameHeadBytes bytes

MessageView DecodeMessage(std::string_view body);
std::vector<Route> DecodeRoutes(std::string_view body);

}  // namespace ipc_client

template <>
struct std::hash<ipc_client::Route> {
    std::size_t operator()(const ipc_client::Route& route) const noexcept {
        const auto both = static_cast<std::uint64_t>(static_cast<std::uint32_t>(route.endpointId)) << 32 |
                          static_cast<std::uint32_t>(route.msgId);
        return std::hash<std::uint64_t>()(both);
    }
};
