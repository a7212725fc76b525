#include "broker_peer.h"

#include <algorithm>
#include <asio/buffer.hpp>

#include "fuzz_target.h"

namespace fuzz {

using ipc_client::FrameType;
using ipc_client::FrameView;
using ipc_client::MessageView;

BrokerPeer::BrokerPeer(ipc_client::PipeSocket socket, std::int32_t number)
    : m_number(number), m_socket(std::move(socket)) {
    m_socket.non_blocking(true);
}

void BrokerPeer::Send(std::string_view bytes) {
    constexpr std::size_t kMost = 1024 * 1024;
    if (m_unsent.size() < kMost) m_unsent += bytes;
    m_unsent.erase(0, ipc_client::WriteNow(m_socket, m_unsent));
}

void BrokerPeer::Post(ipc_client::Route route, std::int32_t serial, std::size_t bytes) {
    std::string data(bytes, static_cast<char>(serial));
    TagIPCMessageItem item;
    item.destId = route.endpointId;
    item.msgId = route.msgId;
    item.sourceId = m_number;
    item.headerWord1 = serial;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(bytes);
    std::string frame;
    ipc_client::AppendMessage(frame, item);
    Send(frame);
}

void BrokerPeer::Receive(bool trusted) {
    while (!m_isClosed) {
        const std::span<char> space = m_reader.Space();
        std::error_code error;
        const std::size_t bytes = m_socket.read_some(asio::buffer(space.data(), space.size()), error);
        m_reader.Commit(bytes);
        TakeFrames(trusted);
        if (error == asio::error::would_block) return;
        if (error) m_isClosed = true;
    }
}

void BrokerPeer::TakeFrames(bool trusted) {
    if (!m_reader.TakeHello()) return;
    while (const std::optional<FrameView> frame = m_reader.Next()) {
        Require(frame->type == FrameType::kMessage, "a broker sends nothing but messages");
        const MessageView message = ipc_client::DecodeMessage(frame->body);
        if (trusted) Check(message);
    }
}

void BrokerPeer::Check(const MessageView& message) {
    const std::int32_t sender = message.sourceId;
    const std::int32_t serial = message.headerWord1;
    Require(sender == kService || m_number == kService || sender == m_number, "the pipe is a star");
    const bool isWhole =
        std::ranges::all_of(message.data, [&](char byte) { return byte == static_cast<char>(serial); });
    Require(isWhole, "a payload comes as it was posted");
    std::int32_t& last = m_serials[{sender, message.route()}];
    Require(serial > last, "messages come once and in order");
    last = serial;
}

}  // namespace fuzz
