#include "ipc/ipc_post.h"

#include <new>

#include "ipc/channel.h"
#include "ipc/field_order.h"

static_assert(offsetof(IPCClientHandle, endpointId) == 0);
static_assert(offsetof(IPCClientHandle, client) == sizeof(void*));

namespace {

bool Post(IPCMessageClient* client, std::int32_t destId, std::int32_t msgId, const char* data, std::size_t length) {
    if (client == nullptr) return false;
    TagIPCMessageItem item;
    item.text = "";
    item.destId = destId;
    item.sourceId = IPC_ENDPOINT_PLUGIN;
    item.msgId = msgId;
    item.headerWord1 = 0;
    item.headerWord2 = -1;
    item.headerWord3 = 0;
    item.dataLen = static_cast<std::int32_t>(length);
    item.data = const_cast<char*>(data);  // the client copies, it does not write
    item.flag = 0;
    item.headerWord4 = 0;
    return client->PostIPCMessage(item);
}

}  // namespace

IPCMessageClient* NewClient(std::int32_t endpointId, bool receives) {
    try {
        return new (std::nothrow) IPCMessageClient(endpointId, receives, false, IPC_PIPE_ASSISTANT);
    } catch (const std::bad_alloc&) {  // the constructor's own way to fail
        return nullptr;
    }
}

IPCMessageClient* NewPageClient() { return NewClient(IPC_ENDPOINT_PLUGIN, true); }

IPCClientHandle* NewClientHandle(IPCMessageClient* client) {
    return new (std::nothrow) IPCClientHandle{IPC_ENDPOINT_PLUGIN, client};
}

bool PostEmpty(IPCMessageClient* client, std::int32_t destId, std::int32_t msgId) {
    return Post(client, destId, msgId, nullptr, 0);
}

bool PostDeviceKey(IPCMessageClient* client, std::int32_t destId, std::int32_t msgId, const std::string& deviceKey) {
    return Post(client, destId, msgId, deviceKey.c_str(), deviceKey.size() + 1);
}

bool PostDecimal(IPCMessageClient* client, std::int32_t destId, std::int32_t msgId, int number) {
    const std::string digits = std::to_string(number);
    return Post(client, destId, msgId, digits.data(), digits.size());
}
