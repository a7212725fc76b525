#include <algorithm>

#include "client_stage.h"
#include "seam.h"

class ClientStage::System {};

ClientStage::ClientStage() { seam::Get() = seam::Seam{}; }
ClientStage::~ClientStage() = default;

IPCMessageClient& ClientStage::Add(int endpointId, bool receives) {
    m_clients.push_back({endpointId, receives, std::make_unique<IPCMessageClient>(endpointId, receives, false, L"")});
    return *m_clients.back().client;
}

void ClientStage::Remove(const IPCMessageClient& client) {
    std::erase_if(m_clients, [&client](const Entry& entry) { return entry.client.get() == &client; });
}

void ClientStage::Send(int endpointId, int msgId, const std::string& payload) {
    seam::Get().Deliver(msgId, payload, endpointId);
}
