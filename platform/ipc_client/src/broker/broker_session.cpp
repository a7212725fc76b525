#include "broker/broker_session.h"

#include <exception>
#include <utility>

#include "broker/broker_loop.h"
#include "diagnostics.h"

namespace ipc_client {

BrokerSession::BrokerSession(PipeSocket socket, unsigned number, bool isOwn, BrokerLoop& broker)
    : m_number(number),
      m_process(PeerProcess(socket)),
      m_isOwn(isOwn),
      m_name("broker: connection " + std::to_string(number) + " (process " + std::to_string(m_process) + ")"),
      m_broker(broker),
      m_channel(std::make_shared<PipeChannel>(std::move(socket), *this)) {
    m_channel->RefuseWithReasons();
}

void BrokerSession::Start(std::chrono::milliseconds handshake) {
    try {
        m_channel->Start(handshake);
    } catch (const std::exception& error) {
        m_channel->Close(error.what());
    }
}

void BrokerSession::Flush() {
    try {
        m_channel->Flush();
    } catch (const std::exception& error) {
        m_channel->Close(error.what());
    }
}

void BrokerSession::Opened() {
    m_channel->HandshakeEnded();
    m_broker.Lines().Write(kIpcLogDetail, m_process, [&] { return m_name + " opened"; });
}

void BrokerSession::FrameArrived(const FrameView& frame) {
    const bool isFirst = std::exchange(m_isFirstFrame, false);
    switch (frame.type) {
        case FrameType::kIntroduction:
            if (!isFirst) throw ProtocolError("an introduction that is not the first frame");
            return m_broker.Introduce(*this, DecodeIntroduction(frame.body));
        case FrameType::kMessage:
            return m_broker.RouteMessage(*m_peer, frame.body);
        case FrameType::kAddressed:
            return m_broker.RouteAddressed(*m_peer, DecodeAddressed(frame.body));
        case FrameType::kAnnounce:
            return m_broker.Announce(*m_peer, DecodeRoutes(frame.body));
        case FrameType::kWithdraw:
            return m_broker.Withdraw(*m_peer, DecodeRoutes(frame.body));
        case FrameType::kAcknowledge:
            return m_broker.TakeHandled(*m_peer, DecodeNumbers(frame.body));
        case FrameType::kSkip:
            return m_broker.Skip(*m_peer, DecodeSkip(frame.body));
        case FrameType::kQuestion:
            return m_broker.Answer(*m_peer);
        case FrameType::kFarewell:
            return m_broker.TakeFarewell(*m_peer);
        default:
            throw ProtocolError("a client sends no frames of type " + std::to_string(static_cast<int>(frame.type)));
    }
}

void BrokerSession::BatchEnded() { m_broker.BatchEnded(*this); }

void BrokerSession::Written() { m_broker.Written(*this); }

void BrokerSession::Closed(std::string_view reason, int level) {
    m_broker.Lines().Write(level, m_process, [&] { return m_name + " closed: " + std::string(reason); });
    m_broker.Ended(*this);
}

}  // namespace ipc_client
