#include "broker/broker_peer.h"

#include <algorithm>
#include <new>

namespace ipc_client {

BrokerPeer::BrokerPeer(unsigned number, asio::io_context& io, BrokerSession& session)
    : m_number(number), m_isOwn(session.IsOwn()), m_name(session.Name()), m_session(&session), m_grace(io) {
    m_identity.process = static_cast<std::uint32_t>(session.Process());
    m_identity.user = static_cast<std::uint32_t>(OwnUser());
}

void BrokerPeer::Introduce(const Introduction& introduction) {
    m_identity.life = introduction.life;
    m_connection = introduction.connection;
    m_mayHaveMissed = introduction.known != IpcLife();
    m_posted.StartAt(introduction.first);
    m_deliveries.StartAt(introduction.received);
    m_phase = Phase::kOpen;
}

void BrokerPeer::Attach(BrokerSession& session, std::uint32_t connection) {
    m_connection = connection;
    m_session = &session;
    m_phase = Phase::kOpen;
    m_replacesRoutes = true;
    m_grace.cancel();
}

void BrokerPeer::GiveUp() {
    m_routes.clear();
    m_lacksMemory = m_hasArrived = false;
    m_mayHaveMissed = true;
}

void BrokerPeer::Detach() {
    m_session = nullptr;
    if (m_phase == Phase::kOpen) m_phase = Phase::kAbsent;
}

std::size_t BrokerPeer::Deliver(const Origin& origin, std::string_view messageBody) {
    std::size_t queued = 0;
    try {
        std::string frame;
        if (IsNamed()) {
            AppendDelivery(frame, origin.stamp, messageBody);
        } else {
            AppendMessage(frame, messageBody);
        }
        Keep(origin, frame);
        queued = frame.size();
        if (m_session != nullptr) m_session->Append(frame);
    } catch (const std::bad_alloc&) {
        m_lacksMemory = true;
    }
    return queued;
}

void BrokerPeer::Keep(const Origin& origin, std::string_view frame) {
    m_sources.push_back({origin.peer, origin.isCharged, origin.stamp.number});
    try {
        if (IsNamed()) {
            m_deliveries.Add(frame);
        } else {
            m_deliveries.Count(frame.size());
        }
    } catch (const std::bad_alloc&) {
        m_sources.pop_back();
        throw;
    }
}

bool BrokerPeer::PausesBeyond(std::size_t limit) {
    if (m_isOwn || m_owed <= limit) return false;
    m_readsAgainAt = std::max<std::size_t>(limit / 2, 1);
    return true;
}

}  // namespace ipc_client
