#pragma once

#include <asio/io_context.hpp>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "pipe/pipe_transport.h"
#include "wire/frame.h"

namespace fuzz {

// A broker of one client, which dies, loses connections and answers as it likes. As long as it keeps to the protocol it
// checks what the client says: each message under its number, none left out that is not done, none acknowledged that
// was not handled.
class ScriptedBroker {
public:
    // `isHandled`: whether the client's callback has returned for the delivery of that serial. The client's posts have
    // the numbers 0, 1, 2, ... in header word 1.
    ScriptedBroker(asio::io_context& io, ipc_client::PipeListener& listener,
                   std::function<bool(std::int32_t)> isHandled)
        : m_io(io), m_listener(listener), m_isHandled(std::move(isHandled)) {}

    bool IsConnected() const { return m_connection.has_value(); }

    // Waits for the client and introduces itself: as the broker that it was, or as another one.
    void Accept(bool isAnother);
    void Cut();
    void Deliver(std::int32_t serial, std::size_t bytes);

    // Says that a message which came is done: the one at that place among those that are not.
    void TellDone(std::size_t place);
    void TellWaiting();
    void Refuse();
    void Answer(bool isRead);
    void SendAnything(std::string_view bytes);

    void Receive();  // what has come
    bool IsTrusted() const { return m_isTrusted; }

    // Whether so many messages have come, and all deliveries were acknowledged.
    bool HasAll(std::uint64_t posted) const { return m_expected >= posted && m_kept.empty(); }

private:
    void Send(std::string_view bytes);
    std::optional<ipc_client::FrameView> Next(std::chrono::steady_clock::time_point until);
    bool ReadSome();
    void Introduce(const ipc_client::Introduction& client, bool isAnother);
    void TakeFrame(const ipc_client::FrameView& frame);
    void TakeMessage(const ipc_client::MessageView& message);
    void TakeHandled(const ipc_client::NumberRange& range);
    void Skip(std::uint64_t count);

    struct Delivery {
        std::int32_t serial;
        std::string frame;
    };

    asio::io_context& m_io;
    ipc_client::PipeListener& m_listener;
    const std::function<bool(std::int32_t)> m_isHandled;
    std::optional<ipc_client::PipeSocket> m_connection;
    std::optional<ipc_client::FrameReader> m_reader;
    std::string m_unsent;
    bool m_isTrusted = true;

    std::uint8_t m_generation = 1;
    IpcLife m_client;
    std::uint32_t m_connections = 0;
    std::uint64_t m_expected = 0;       // number of the client's next message
    std::set<std::uint64_t> m_notDone;  // of those that came
    std::set<std::uint64_t> m_done;     // that the client was told of
    std::uint64_t m_nextDelivery = 0;
    std::map<std::uint64_t, Delivery> m_kept;  // not acknowledged
};

}  // namespace fuzz
