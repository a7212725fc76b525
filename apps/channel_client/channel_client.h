#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <type_traits>

#include "channel/messages.h"
#include "ipc_client/ipc_message_client.h"

// Posting and receiving the accessory channel's messages through a client of the message pipe, for programs.
namespace channel_client {

enum class PostResult {
    kPosted,
    kRefused,          // by the client: IPCMessageClient::PostIPCMessage says why
    kMemoryExhausted,  // nothing was posted
};

// To whom a message goes that waits for nobody, and what it tells of (IPCMessageClient::PostTo).
struct Addressees {
    std::span<const IpcLife> lives;
    std::uint64_t event = 0;
};

namespace internal {

template <class Payload, class PostItem>
PostResult Post(std::int32_t sourceEndpoint, std::int32_t destId, std::int32_t msgId, const Payload& payload,
                const PostItem& postItem) {
    const std::optional<channel::Bytes> bytes = channel::Encode(payload);
    if (!bytes) return PostResult::kMemoryExhausted;
    TagIPCMessageItem item;
    item.destId = destId;
    item.sourceId = sourceEndpoint;
    item.msgId = msgId;
    item.data = bytes->Data();
    item.dataLen = bytes->Size();
    return postItem(item) ? PostResult::kPosted : PostResult::kRefused;
}

}  // namespace internal

// Posts one message from `sourceEndpoint`. Any thread; never waits for the other side.
//
//     Post(client, IPC_ENDPOINT_UPDATE_SERVICE, channel::to_page::IPC_MSG_PKG_FINISH, {"pen"});
template <channel::Direction direction, class Payload>
PostResult Post(IPCMessageClient& client, std::int32_t sourceEndpoint,
                const channel::Message<direction, Payload>& message, const std::type_identity_t<Payload>& payload) {
    return internal::Post(sourceEndpoint, message.endpoint, message.id, payload,
                          [&](const TagIPCMessageItem& item) { return client.PostIPCMessage(item); });
}

// As Post, to those of the addressees who are there. From the service's process only.
template <channel::Direction direction, class Payload>
PostResult PostTo(IPCMessageClient& client, const Addressees& to, std::int32_t sourceEndpoint,
                  const channel::Message<direction, Payload>& message, const std::type_identity_t<Payload>& payload) {
    return internal::Post(sourceEndpoint, message.endpoint, message.id, payload,
                          [&](const TagIPCMessageItem& item) { return client.PostTo(to.lives, item, to.event); });
}

// The bytes of a message that was received.
inline std::string_view PayloadBytes(const TagIPCMessageItem& item) {
    if (item.data == nullptr || item.dataLen <= 0) return {};
    return {item.data, static_cast<std::size_t>(item.dataLen)};
}

// A callback of such messages, which calls `handler` with their payload.
template <channel::Direction direction, class Payload>
std::function<void(TagIPCMessageItem&)> CallbackOf(const channel::Message<direction, Payload>&,
                                                   std::type_identity_t<std::function<void(const Payload&)>> handler) {
    return [handler = std::move(handler)](TagIPCMessageItem& item) {
        handler(channel::Decode<Payload>(PayloadBytes(item)));
    };
}

// Calls `handler` with the payload of each such message that comes to the client's endpoint, on the client's delivery
// thread, until its callback is unregistered.
template <channel::Direction direction, class Payload>
void Listen(IPCMessageClient& client, const channel::Message<direction, Payload>& message,
            std::type_identity_t<std::function<void(const Payload&)>> handler) {
    client.RegisterMessageCallback(message.id, CallbackOf(message, std::move(handler)));
}

}  // namespace channel_client
