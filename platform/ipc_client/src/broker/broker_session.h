#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "pipe/pipe_channel.h"
#include "pipe/pipe_transport.h"
#include "wire/frame.h"

namespace ipc_client {

class BrokerLoop;
class BrokerPeer;

// One connection at the broker. Broker thread only.
class BrokerSession final : public PipeChannel::Listener {
public:
    BrokerSession(PipeSocket socket, unsigned number, bool isOwn, BrokerLoop& broker);

    // May end the session before it returns.
    void Start(std::chrono::milliseconds handshake);
    void Close(std::string_view reason, RefusalCode code) { m_channel->Close(reason, kIpcLogEvent, code); }

    unsigned Number() const { return m_number; }
    unsigned long Process() const { return m_process; }
    bool IsOwn() const { return m_isOwn; }  // of the service's process
    const std::string& Name() const { return m_name; }

    // Who speaks here. Null only until the broker has said who, and when it was forgotten.
    BrokerPeer* Peer() const { return m_peer; }
    void SetPeer(BrokerPeer* peer) { m_peer = peer; }

    // Queues whole frames; throws std::bad_alloc.
    void Append(std::string_view frames) { m_channel->Append(frames); }
    void Flush();  // writes what was queued; may end the session
    std::size_t Backlog() const { return m_channel->Backlog(); }

    // What is taken for a long frame of its, as last counted and now.
    std::size_t UnfinishedBytes() const { return m_unfinishedBytes; }
    void SetUnfinishedBytes(std::size_t bytes) { m_unfinishedBytes = bytes; }
    std::size_t UnfinishedBytesNow() const { return m_channel->UnfinishedBytes(); }

    void Pause() { m_channel->Pause(); }    // it is not read
    void Resume() { m_channel->Resume(); }  // it is read again; may end the session

private:
    void Opened() override;
    void FrameArrived(const FrameView& frame) override;
    void BatchEnded() override;
    void Written() override;
    void Closed(std::string_view reason, int level) override;

    const unsigned m_number;
    const unsigned long m_process;
    const bool m_isOwn;
    const std::string m_name;  // for log lines
    BrokerLoop& m_broker;
    std::shared_ptr<PipeChannel> m_channel;
    BrokerPeer* m_peer = nullptr;
    std::size_t m_unfinishedBytes = 0;
    bool m_isFirstFrame = true;
};

}  // namespace ipc_client
