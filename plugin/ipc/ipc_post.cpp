#include "ipc/ipc_post.h"

#include <new>

#include "ipc/field_order.h"

static_assert(offsetof(IPCClientHandle, endpointId) == 0);
static_assert(offsetof(IPCClientHandle, client) == sizeof(void*));

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

PageWiring WirePage(IPCMessageClient*& client, IPCClientHandle*& handle, std::unique_ptr<IPCServer>& registry) {
    client = NewPageClient();
    if (client == nullptr) return PageWiring::kNoClient;
    handle = NewClientHandle(client);
    if (handle == nullptr) return PageWiring::kNoHandle;
    registry.reset(new (std::nothrow) IPCServer(client));
    return registry ? PageWiring::kComplete : PageWiring::kNoRegistry;
}

bool PostBytes(IPCMessageClient* client, std::int32_t msgId, std::int32_t destId, std::string_view bytes) {
    if (client == nullptr) return false;
    TagIPCMessageItem item;
    item.text = "";
    item.destId = destId;
    item.sourceId = IPC_ENDPOINT_PLUGIN;
    item.msgId = msgId;
    item.headerWord1 = 0;
    item.headerWord2 = -1;
    item.headerWord3 = 0;
    item.dataLen = static_cast<std::int32_t>(bytes.size());
    item.data = const_cast<char*>(bytes.data());  // the client copies, it does not write
    item.flag = 0;
    item.headerWord4 = 0;
    return client->PostIPCMessage(item);
}
