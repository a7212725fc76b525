#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <set>

#include "base/process.h"
#include "client_stage.h"
#include "ipc_client/ipc_broker.h"
#include "temporary_folder.h"

namespace {
constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\Stage";
constexpr int kAllCame = 0x7000;  // follows each message, to every client that receives
constexpr int kSender = 0x7001;
}  // namespace

class ClientStage::System {
public:
    System() {
        base::SetVariable("BRINDLE_PIPE_DIR", base::Utf8FromPath(m_folder));
        m_broker.Start();
        m_sender = std::make_unique<IPCMessageClient>(kSender, false, false, kPipe);
    }
    ~System() {
        m_sender.reset();
        m_broker.Stop();
    }

    void Post(int endpointId, int msgId, std::string payload) {
        TagIPCMessageItem item;
        item.destId = endpointId;
        item.msgId = msgId;
        item.dataLen = static_cast<std::int32_t>(payload.size());
        item.data = payload.empty() ? nullptr : payload.data();
        EXPECT_TRUE(m_sender->PostIPCMessage(item));
    }

    void Came(const IPCMessageClient* client) {
        const std::lock_guard lock(m_mutex);
        m_missing.erase(client);
        m_came.notify_all();
    }

    void Expect(const IPCMessageClient* client) {
        const std::lock_guard lock(m_mutex);
        m_missing.insert(client);
    }

    void WaitForAll() {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_came.wait_for(lock, std::chrono::seconds(30), [this] { return m_missing.empty(); }));
    }

private:
    const test_support::TemporaryFolder m_folder;
    IPCBroker m_broker{kPipe};
    std::unique_ptr<IPCMessageClient> m_sender;
    std::mutex m_mutex;
    std::condition_variable m_came;
    std::set<const IPCMessageClient*> m_missing;
};

ClientStage::ClientStage() : m_system(std::make_unique<System>()) {}
ClientStage::~ClientStage() { m_clients.clear(); }

IPCMessageClient& ClientStage::Add(int endpointId, bool receives) {
    m_clients.push_back({endpointId, receives, std::make_unique<IPCMessageClient>(endpointId, receives, false, kPipe)});
    return *m_clients.back().client;
}

void ClientStage::Remove(const IPCMessageClient& client) {
    std::erase_if(m_clients, [&client](const Entry& entry) { return entry.client.get() == &client; });
}

// Messages of one connection arrive in their order, so the second says that the first one has been dealt with.
void ClientStage::Send(int endpointId, int msgId, const std::string& payload) {
    std::set<int> endpoints;
    for (const Entry& entry : m_clients) {
        if (!entry.receives) continue;
        IPCMessageClient* const client = entry.client.get();
        m_system->Expect(client);
        client->RegisterMessageCallback(kAllCame, [this, client](TagIPCMessageItem&) { m_system->Came(client); });
        endpoints.insert(entry.endpointId);
    }
    m_system->Post(endpointId, msgId, payload);
    for (const int endpoint : endpoints) m_system->Post(endpoint, kAllCame, {});
    m_system->WaitForAll();
}
