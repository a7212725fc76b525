#pragma once

#include <type_traits>

#include "base/line_budget.h"
#include "ipc_client/ipc_message_client.h"
#include "update_service.h"

namespace update_service {

// The accessory pages at the other end of the pipe. Texts become what the channel has: device keys the ANSI code page,
// everything else wide strings.
class IpcPageLink final : public PageLink {
public:
    // `client` is the service's, made for IPC_ENDPOINT_UPDATE_SERVICE, and must outlive the link.
    IpcPageLink(IPCMessageClient& client, Log log);

    void SendList(const IpcLife& page, const std::vector<Accessory>& accessories) override;
    void SendProgress(const Pages& pages, const std::string& deviceKey, int percent) override;
    void Send(const Pages& pages, const channel::ToPage<channel::DeviceKey>& message, const std::string& deviceKey,
              std::uint64_t event) override;

private:
    template <class Payload>
    void Post(const Pages& pages, std::uint64_t event, const channel::ToPage<Payload>& message,
              const std::type_identity_t<Payload>& payload);

    IPCMessageClient& m_client;
    const Log m_log;
    base::LineBudget m_lines;
};

// Hands what pages ask for, and that they come and go, to `requests`, on the client's delivery thread, until the
// client's callbacks are unregistered.
void ReceiveRequests(IPCMessageClient& client, PageRequests& requests);

}  // namespace update_service
