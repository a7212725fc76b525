#include "ipc/ipc_server.h"

#include <functional>

#include "ipc/field_order.h"
#include "ipc/ipc_post.h"

static_assert(InOrder({offsetof(PkgDownloadProcess, deviceKey), offsetof(PkgDownloadProcess, progress)}));
static_assert(InOrder({offsetof(AccessoryVersionDataInfo, deviceKey), offsetof(AccessoryVersionDataInfo, modelId),
                       offsetof(AccessoryVersionDataInfo, imagePath), offsetof(AccessoryVersionDataInfo, version),
                       offsetof(AccessoryVersionDataInfo, descLines), offsetof(AccessoryVersionDataInfo, reserved),
                       offsetof(AccessoryVersionDataInfo, isDriver)}));

struct IPCServerFieldOrder {
    static_assert(InOrder({offsetof(IPCServer, ownsClient), offsetof(IPCServer, lock), offsetof(IPCServer, endpointId),
                           offsetof(IPCServer, clientFlag), offsetof(IPCServer, client), offsetof(IPCServer, procs)}));
    static_assert(offsetof(IPCServer, ownsClient) == 0);

    struct Owner;
    using Proc = IPCServerProc<Owner, PkgDownloadProcess&>;
    static_assert(offsetof(IPCServerProcBase, msgId) == sizeof(void*));
    static_assert(offsetof(Proc, owner) == 2 * sizeof(void*));
    static_assert(offsetof(Proc, handler) == 3 * sizeof(void*));
};

namespace {
constexpr std::uint32_t kReaderBlockSize = 64;  // [bytes]
}

void IPCServerProcBase::OnMessage(TagIPCMessageItem& item) {
    IPCDataIO reader(&item, kReaderBlockSize, true, false);
    Process(reader);
}

IPCServer::IPCServer(IPCMessageClient* sharedClient)
    : ownsClient(false), endpointId(0), clientFlag(false), client(sharedClient) {}

IPCServer::IPCServer(std::int32_t endpoint, bool clientReceives)
    : ownsClient(true), endpointId(endpoint), clientFlag(clientReceives), client(nullptr) {}

IPCServer::~IPCServer() {
    UnregisterAll();
    if (ownsClient) delete client;
}

int IPCServer::Register(IPCServerProcBase* proc) {
    if (proc == nullptr) return -1;
    const std::int32_t msgId = proc->msgId;
    const std::lock_guard<std::mutex> guard(lock);
    if (!procs.emplace(msgId, proc).second) return -1;
    if (ownsClient) client = NewOwnClient();  // an earlier one is dropped, not deleted, on purpose
    if (client == nullptr) return -1;         // the entry stays although the receiver is the caller's again, on purpose
    client->RegisterMessageCallback(msgId, std::bind(&IPCServerProcBase::OnMessage, proc, std::placeholders::_1));
    return 1;
}

void IPCServer::UnregisterAll() {
    const std::lock_guard<std::mutex> guard(lock);
    if (client == nullptr && ownsClient) client = NewOwnClient();
    if (client == nullptr) return;
    for (auto& [msgId, proc] : procs) {
        client->UnRegisterMessageCallback(msgId);
        delete proc;
        proc = nullptr;
    }
    procs.clear();
}

IPCMessageClient* IPCServer::NewOwnClient() const { return NewClient(endpointId, clientFlag); }
