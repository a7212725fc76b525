#pragma once

#include <asio/steady_timer.hpp>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "broker/broker_session.h"
#include "broker/pending_messages.h"
#include "ipc_client/ipc_broker.h"
#include "pipe/pipe_transport.h"

namespace ipc_client {

// The broker's work, all of it on the one thread that runs `io`: accepts connections, keeps who announced what, and
// routes messages. The thread must have ended before the loop is destroyed.
class BrokerLoop final : public BrokerSession::Owner {
public:
    // Takes the pipe's name; throws std::runtime_error as PipeListener does.
    BrokerLoop(asio::io_context& io, const std::filesystem::path& path, const IPCBrokerLimits& limits);
    ~BrokerLoop();

private:
    void Accept();
    void Accepted(std::error_code error, PipeSocket socket);

    void Announce(BrokerSession& session, const std::vector<Route>& routes) override;
    void Withdraw(BrokerSession& session, const std::vector<Route>& routes) override;
    void RouteMessage(Route route, std::string_view frame) override;
    void FlushTouched() override;
    void Ended(BrokerSession& session) override;

    void Keep(Route route, std::string_view frame);
    void Queue(BrokerSession& session, std::string_view frame);

    const IPCBrokerLimits m_limits;
    PipeListener m_listener;
    asio::steady_timer m_acceptAgain;
    std::unordered_map<BrokerSession*, std::unique_ptr<BrokerSession>> m_sessions;
    std::unordered_map<Route, std::vector<BrokerSession*>> m_receivers;  // no list is empty
    std::set<BrokerSession*> m_touched;                                  // have frames that were not flushed
    PendingMessages m_pending;
    unsigned m_sessionNumber = 0;
};

}  // namespace ipc_client
