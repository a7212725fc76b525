#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <type_traits>

#include "channel/messages.h"
#include "ipc/ipc_server.h"
#include "ipc_client/ipc_message_client.h"

// The accessory page's client and endpoint, as one value.
struct IPCClientHandle {
    std::int32_t endpointId;
    IPCMessageClient* client;
};

// Makes a client of the assistant pipe; null when memory, or whatever the library needs beside it, is exhausted. The
// caller owns it. `receives`: whether callbacks may be registered.
IPCMessageClient* NewClient(std::int32_t endpointId, bool receives);

// The same for the accessory page's own endpoint: what the page and each of its rows post through.
IPCMessageClient* NewPageClient();

// Makes the handle of a client; null when memory is exhausted. Nobody releases it, on purpose.
IPCClientHandle* NewClientHandle(IPCMessageClient* client);

// Makes a window's client, its handle and its registry, in this order, until one cannot be made. What was there before:
// the client is dropped, not deleted, on purpose; the registry goes.
enum class PageWiring { kNoClient, kNoHandle, kNoRegistry, kComplete };
PageWiring WirePage(IPCMessageClient*& client, IPCClientHandle*& handle, std::unique_ptr<IPCServer>& registry);

// The accessory page's posts, from IPC_ENDPOINT_PLUGIN with the fixed header; the client copies the payload. False
// without a client; otherwise what the client returns.
bool PostBytes(IPCMessageClient* client, std::int32_t msgId, std::int32_t destId, std::string_view bytes);

//     Post(client, channel::from_page::IPC_MSG_DOWNLOAD_START, {deviceKey});
template <class Payload>
bool Post(IPCMessageClient* client, const channel::FromPage<Payload>& message,
          const std::type_identity_t<Payload>& payload) {
    return PostBytes(client, message.id, message.endpoint, channel::BytesOf(payload));
}
