#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <type_traits>

#include "channel/payload.h"
#include "ipc/ipc_data_io.h"
#include "ipc_client/ipc_message_client.h"

// Typed receivers: an incoming message becomes a call of a member function with a decoded record.
//
//     IPCServer registry(client);
//     auto* proc = new (std::nothrow) IPCServerProc<Page, PkgDownloadProcess&>(0xB20023, this, &Page::OnProgress);
//     if (registry.Register(proc) < 0) delete proc;

// One receiver: the message id it handles, and what it does with a message.
class IPCServerProcBase {
public:
    explicit IPCServerProcBase(std::int32_t messageId) : msgId(messageId) {}

    virtual ~IPCServerProcBase() = default;
    virtual void Process(IIPCDataIO& reader) = 0;  // decodes and delivers one message

    // What is registered with the client. Leaves the item as it is.
    void OnMessage(TagIPCMessageItem& item);

    std::int32_t msgId;
};

// Calls `handler` of `owner` (not owned; must outlive the registration) with a record that lives only during the call.
// The handler is called for every message: with a default record when the marker is wrong, with a partly decoded one
// when the payload is short. On the client's delivery thread.
template <class Owner, class Arg>
class IPCServerProc final : public IPCServerProcBase {
public:
    using Handler = void (Owner::*)(Arg);

    IPCServerProc(std::int32_t messageId, Owner* object, Handler function)
        : IPCServerProcBase(messageId), owner(object), handler(function) {}

    void Process(IIPCDataIO& reader) override {
        std::decay_t<Arg> record;
        ReadRecord(reader, record);
        (owner->*handler)(record);
    }

private:
    friend struct IPCServerFieldOrder;  // compile-time check of the field order

    Owner* owner;
    Handler handler;
};

// The registry: owns its receivers and registers them with a client by message id. Any thread, but one at a time; and
// not from a receiver while another thread unregisters, which holds the lock and waits for that receiver to end. The
// lock is held across the client's registration calls, never while a receiver runs.
class IPCServer {
public:
    // Shares its owner's client, which must outlive the receivers' registration.
    explicit IPCServer(IPCMessageClient* sharedClient);

    // Makes a client of its own at each registration and owns the last one, for users without one. The accessory page
    // does not.
    IPCServer(std::int32_t endpoint, bool clientReceives);

    ~IPCServer();
    IPCServer(const IPCServer&) = delete;
    IPCServer& operator=(const IPCServer&) = delete;

    // 1: registered, and owned from now on. -1: null, the id is taken, or no client; the receiver is still the
    // caller's.
    int Register(IPCServerProcBase* proc);

    // Unregisters and deletes every receiver, in ascending order of ids.
    void UnregisterAll();

private:
    friend struct IPCServerFieldOrder;  // compile-time check of the field order

    IPCMessageClient* NewOwnClient() const;

    bool ownsClient;
    std::mutex lock;
    std::int32_t endpointId;  // only with ownsClient
    bool clientFlag;          // only with ownsClient
    IPCMessageClient* client;
    std::map<int, IPCServerProcBase*> procs;
};
