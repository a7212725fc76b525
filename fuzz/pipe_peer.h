#pragma once

#include <asio/io_context.hpp>
#include <compare>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pipe/pipe_transport.h"
#include "wire/frame.h"
#include "wire/kept_frames.h"
#include "wire/outstanding.h"

namespace fuzz {

// One who uses a broker, over one connection after the other: by its name, as a life that goes on where the last
// connection broke, or without. It checks what it is sent: whole messages, none twice, those of each sender and route
// in their order, from nobody who may not talk to it, and nothing that it has not announced.
class PipePeer {
public:
    static constexpr std::int32_t kService = 0;  // the number of the peer that is of the broker's own process

    enum class Manner { kNamed, kAnonymous, kSilent };  // silent: says nothing, not even hello

    // A message of some life, or of one that has none.
    struct MessageId {
        IpcLife life;
        std::uint64_t number = 0;
        auto operator<=>(const MessageId&) const = default;
    };

    explicit PipePeer(std::int32_t number) : m_number(number) { BeginLife(); }

    bool IsConnected() const { return m_connection.has_value(); }
    bool IsNamed() const { return m_manner == Manner::kNamed; }
    bool IsOpen() const { return m_isOpen; }  // introduced to each other
    bool IsAwaited() const {
        return (m_wasNamed && !m_isOpen) || m_hasLeftALife;
    }                                                                     // the broker may wait for a life of it
    bool IsSettled() const { return !m_isOpen || m_posted.IsSettled(); }  // all is done, or waits for a receiver
    const IpcLife& Life() const { return m_life; }
    std::int32_t Generation() const { return m_generation; }

    // The same life, when it is named before and after; then an earlier connection is let be.
    void Connect(ipc_client::PipeSocket socket, Manner manner);
    void Cut();    // without a word
    void Leave();  // this life ends
    void Send(std::string_view bytes);

    // Of the routes RouteOf(0) to RouteOf(7), those whose bits are set.
    void Announce(std::uint8_t bits);
    void Withdraw(std::uint8_t bits);
    static ipc_client::Route RouteOf(int bit) { return {bit / 4, bit % 4}; }

    // A message with a payload of so many bytes. `serial` grows from post to post, whoever posts. To all, or to one
    // life.
    void Post(ipc_client::Route route, std::int32_t serial, std::size_t bytes, const PipePeer* to = nullptr);

    // Reads all that has come. Whether anything did. `trusted`: everybody keeps to the protocol.
    bool Receive(bool trusted);

    // Has handled so many of what it received, the newest or the oldest first. Whether it says so.
    bool Handle(std::size_t count, bool newestFirst);
    bool Holds(const MessageId& message) const;  // received and not handled

    // What has become done of its own since the last call.
    std::vector<MessageId> TakeDone() { return std::exchange(m_done, {}); }

    void Ask();

private:
    struct Unhandled {
        std::uint64_t delivery;
        MessageId message;
    };

    void BeginLife();
    void Disconnect();
    void Append(std::string_view frame) { m_isOpen || !IsNamed() ? Send(frame) : void(); }
    void TakeFrame(const ipc_client::FrameView& frame, bool trusted);
    void TakeIntroduction(const ipc_client::Introduction& broker, bool trusted);
    void TakeDelivery(const ipc_client::DeliveryView& delivery, bool trusted);
    void TakeNumbers(ipc_client::FrameType type, std::string_view body, bool trusted);
    void Check(const ipc_client::MessageView& message);

    using Sender = std::pair<std::int32_t, std::int32_t>;  // number and generation

    const std::int32_t m_number;
    std::int32_t m_generation = 0;  // of its lives, or of its connections without a name
    Manner m_manner = Manner::kSilent;
    bool m_wasNamed = false;  // this life has been introduced
    bool m_isOpen = false;
    bool m_hasLeftALife = false;  // without a farewell
    IpcLife m_life;
    IpcLife m_broker;
    std::uint32_t m_connections = 0;
    std::set<ipc_client::Route> m_routes;     // announced
    std::set<ipc_client::Route> m_announced;  // ever
    ipc_client::KeptFrames m_posted;
    std::vector<MessageId> m_done;
    ipc_client::Outstanding m_received;
    std::deque<Unhandled> m_unhandled;
    std::set<IpcLife> m_present;                                             // that the broker has told of
    std::map<std::pair<Sender, ipc_client::Route>, std::int32_t> m_serials;  // last

    std::optional<ipc_client::PipeSocket> m_connection;
    std::optional<ipc_client::PipeSocket> m_earlier;
    std::string m_unsent;
    std::optional<ipc_client::FrameReader> m_reader;
};

}  // namespace fuzz
