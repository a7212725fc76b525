#include "broker/broker_loop.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include "base/reason.h"
#include "diagnostics.h"

namespace ipc_client {

BrokerLoop::BrokerLoop(asio::io_context& io, const std::filesystem::path& path, const IPCBrokerLimits& limits)
    : m_limits(limits), m_listener(io, path), m_acceptAgain(io), m_pending(limits) {
    Accept();
}

BrokerLoop::~BrokerLoop() = default;

void BrokerLoop::Accept() {
    m_listener.AsyncAccept([this](std::error_code error, PipeSocket socket) { Accepted(error, std::move(socket)); });
}

void BrokerLoop::Accepted(std::error_code error, PipeSocket socket) {
    if (error) {
        Log(kIpcLogEvent, "broker: a connection was not accepted: " + base::Reason(error));
        m_acceptAgain.expires_after(std::chrono::milliseconds(100));  // out of descriptors, say: it may pass
        return m_acceptAgain.async_wait([this](std::error_code cancelled) {
            if (!cancelled) Accept();
        });
    }
    auto owned = std::make_unique<BrokerSession>(std::move(socket), ++m_sessionNumber, m_limits, *this);
    BrokerSession& session = *owned;
    m_sessions.emplace(&session, std::move(owned));
    session.Start();
    Accept();
}

void BrokerLoop::Announce(BrokerSession& session, const std::vector<Route>& routes) {
    for (const Route& route : routes) {
        std::vector<BrokerSession*>& receivers = m_receivers[route];
        if (std::find(receivers.begin(), receivers.end(), &session) == receivers.end()) receivers.push_back(&session);
    }
    for (const std::string& frame : m_pending.Take(routes)) Queue(session, frame);
}

void BrokerLoop::Withdraw(BrokerSession& session, const std::vector<Route>& routes) {
    for (const Route& route : routes) {
        const auto entry = m_receivers.find(route);
        if (entry == m_receivers.end()) continue;
        std::erase(entry->second, &session);
        if (entry->second.empty()) m_receivers.erase(entry);
    }
}

void BrokerLoop::RouteMessage(Route route, std::string_view frame) {
    const auto entry = m_receivers.find(route);
    if (entry == m_receivers.end()) return Keep(route, frame);
    for (BrokerSession* receiver : entry->second) Queue(*receiver, frame);
}

void BrokerLoop::Keep(Route route, std::string_view frame) {
    for (const PendingMessages::Dropped& dropped : m_pending.Add(route, frame)) {
        if (!IsWorthALine(dropped.soFar)) continue;
        Log(kIpcLogEvent, "broker: nobody takes " + Describe(dropped.route) +
                              ", its queue is full: the oldest dropped (" + std::to_string(dropped.soFar) + " so far)");
    }
}

void BrokerLoop::Queue(BrokerSession& session, std::string_view frame) {
    session.Queue(frame);
    m_touched.insert(&session);
}

void BrokerLoop::FlushTouched() {
    while (!m_touched.empty()) {
        BrokerSession* session = *m_touched.begin();
        m_touched.erase(m_touched.begin());
        session->Flush();
    }
}

void BrokerLoop::Ended(BrokerSession& session) {
    m_touched.erase(&session);
    for (auto entry = m_receivers.begin(); entry != m_receivers.end();) {
        std::erase(entry->second, &session);
        entry = entry->second.empty() ? m_receivers.erase(entry) : std::next(entry);
    }
    m_sessions.erase(&session);
}

}  // namespace ipc_client
