#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ipc_client/ipc_message_client.h"

// Clients of the message pipe and somebody who sends to them: the real ones with a broker, or the fake ones at the
// seam.
class ClientStage {
public:
    ClientStage();
    ~ClientStage();

    // The stage owns it.
    IPCMessageClient& Add(int endpointId, bool receives = true);
    void Remove(const IPCMessageClient& client);

    // Returns when every callback that gets the message has run.
    void Send(int endpointId, int msgId, const std::string& payload = {});

private:
    class System;  // what differs between the real ones and the fakes

    struct Entry {
        int endpointId;
        bool receives;
        std::unique_ptr<IPCMessageClient> client;
    };

    const std::unique_ptr<System> m_system;
    std::vector<Entry> m_clients;
};
