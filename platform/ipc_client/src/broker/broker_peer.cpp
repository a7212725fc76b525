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
    const std::size_t bytes = IsNamed() ? DeliveryBytes(messageBody) : kFrameHeadBytes + messageBody.size();
    try {
        m_sources.push_back({origin.peer, origin.isCharged, origin.stamp.number});
    } catch (const std::bad_alloc&) {
        m_lacksMemory = true;
        return 0;
    }
    try {
        if (IsNamed()) {
            m_deliveries.Add(bytes, [&](std::string& out) { AppendDelivery(out, origin.stamp, messageBody); });
        } else {
            m_deliveries.Count(bytes);
        }
    } catch (const std::bad_alloc&) {
        m_sources.pop_back();
        m_lacksMemory = true;
        return 0;
    }
    if (!IsNamed()) WriteMessage(messageBody);
    return bytes;
}

// It is not kept for one that has not introduced itself.
void BrokerPeer::WriteMessage(std::string_view messageBody) {
    try {
        std::string frame;
        AppendMessage(frame, messageBody);
        if (m_session != nullptr) m_session->Append(frame);
    } catch (const std::bad_alloc&) {
        m_lacksMemory = true;
    }
}

void BrokerPeer::Send() {
    constexpr std::size_t kMostUnwritten = 256 * 1024;
    try {
        while (m_session != nullptr && HasUnsent() && m_session->Backlog() < kMostUnwritten) {
            m_session->Append(m_deliveries.Unsent());
            m_deliveries.SetSent();
        }
    } catch (const std::bad_alloc&) {
        m_lacksMemory = true;
    }
}

bool BrokerPeer::PausesBeyond(std::size_t limit) {
    if (m_isOwn || m_owed <= limit) return false;
    m_readsAgainAt = std::max<std::size_t>(limit / 2, 1);
    return true;
}

}  // namespace ipc_client
