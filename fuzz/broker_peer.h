#pragma once

#include <asio/io_context.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "pipe/pipe_transport.h"
#include "wire/frame.h"

namespace fuzz {

// The other end of one connection to a broker. It checks what it is sent: whole messages of its own kind, none twice,
// those of each sender and route in the order in which they were posted, and from nobody who may not talk to it.
class BrokerPeer {
public:
    static constexpr std::int32_t kService = 0;  // the number of the peer that is of the broker's own process

    BrokerPeer(ipc_client::PipeSocket socket, std::int32_t number);

    // Writes what the pipe takes, the rest on a later call.
    void Send(std::string_view bytes);

    // A message with a payload of so many bytes. `serial` grows from post to post, whoever posts.
    void Post(ipc_client::Route route, std::int32_t serial, std::size_t bytes);

    // Reads all that has come. `trusted`: all messages were written by Post.
    void Receive(bool trusted);

    bool IsClosed() const { return m_isClosed; }  // as found by Receive

private:
    void TakeFrames(bool trusted);
    void Check(const ipc_client::MessageView& message);

    const std::int32_t m_number;
    ipc_client::PipeSocket m_socket;
    std::string m_unsent;
    ipc_client::FrameReader m_reader;
    std::map<std::pair<std::int32_t, ipc_client::Route>, std::int32_t> m_serials;  // last, by sender and route
    bool m_isClosed = false;
};

}  // namespace fuzz
