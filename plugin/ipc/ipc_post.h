#pragma once

#include <cstdint>
#include <string>

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

// The accessory page's posts. Each sends one message from IPC_ENDPOINT_PLUGIN with the fixed header; the payload is
// copied by the client. All return what the client returns, and false without a client.
bool PostEmpty(IPCMessageClient* client, std::int32_t destId, std::int32_t msgId);
bool PostDeviceKey(IPCMessageClient* client, std::int32_t destId, std::int32_t msgId,
                   const std::string& deviceKey);  // with its terminating zero
bool PostDecimal(IPCMessageClient* client, std::int32_t destId, std::int32_t msgId,
                 int number);  // without a terminating zero
