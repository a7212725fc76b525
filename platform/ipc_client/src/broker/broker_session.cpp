#include "broker/broker_session.h"

#include "diagnostics.h"

namespace ipc_client {

BrokerSession::BrokerSession(PipeSocket socket, unsigned number, const IPCBrokerLimits& limits, Owner& owner)
    : m_name("broker: connection " + std::to_string(number) + " (" + PeerName(socket) + ")"),
      m_limits(limits),
      m_owner(owner),
      m_channel(std::make_shared<PipeChannel>(std::move(socket), *this)) {}

void BrokerSession::Start() { m_channel->Start(m_limits.handshake); }

void BrokerSession::Flush() {
    m_channel->Flush();
    const std::size_t backlog = m_channel->Backlog();
    if (backlog <= m_limits.outgoingBytes) return;
    m_channel->Close("it reads too slowly, " + std::to_string(backlog) + " bytes wait for it");
}

void BrokerSession::Opened() { Log(kIpcLogDetail, m_name + " opened"); }

void BrokerSession::FrameArrived(const FrameView& frame) {
    switch (frame.type) {
        case FrameType::kMessage:
            return m_owner.RouteMessage(DecodeMessage(frame.body).route(), frame.whole);
        case FrameType::kAnnounce:
            return m_owner.Announce(*this, DecodeRoutes(frame.body));
        case FrameType::kWithdraw:
            return m_owner.Withdraw(*this, DecodeRoutes(frame.body));
    }
}

void BrokerSession::Closed(const std::string& reason, int level) {
    Log(level, m_name + " closed: " + reason);
    m_owner.Ended(*this);
}

}  // namespace ipc_client
