#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ipc_client/ipc_broker.h"
#include "pipe/pipe_channel.h"

namespace ipc_client {

// One connection at the broker. Broker thread only.
class BrokerSession final : public PipeChannel::Listener {
public:
    class Owner {
    public:
        virtual void Announce(BrokerSession& session, const std::vector<Route>& routes) = 0;
        virtual void Withdraw(BrokerSession& session, const std::vector<Route>& routes) = 0;
        virtual void RouteMessage(Route route, std::string_view frame) = 0;
        virtual void FlushTouched() = 0;                 // after each batch of frames
        virtual void Ended(BrokerSession& session) = 0;  // the last call; destroys the session

    protected:
        ~Owner() = default;
    };

    BrokerSession(PipeSocket socket, unsigned number, const IPCBrokerLimits& limits, Owner& owner);

    // May end the session before it returns.
    void Start();

    void Queue(std::string_view frame) { m_channel->Append(frame); }

    // Writes what was queued; ends the session when too much is left.
    void Flush();

private:
    void Opened() override;
    void FrameArrived(const FrameView& frame) override;
    void BatchEnded() override { m_owner.FlushTouched(); }
    void Closed(const std::string& reason, int level) override;

    const std::string m_name;  // for log lines
    const IPCBrokerLimits& m_limits;
    Owner& m_owner;
    std::shared_ptr<PipeChannel> m_channel;
};

}  // namespace ipc_client
