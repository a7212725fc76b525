#pragma once

#include <cstddef>
#include <cstdint>

// The constants of the pipe protocol (docs/protocol.md). Integers on the wire are little-endian.
namespace ipc_client {

// Handshake: the first bytes in either direction, before any frame.
inline constexpr char kMagic[4] = {'B', 'P', 'I', 'P'};
inline constexpr std::uint32_t kProtocolVersion = 1;
inline constexpr std::size_t kHelloBytes = 4 + 4;  // magic, version

// A frame is a head, which says how long the body is and what it holds, and the body.
inline constexpr std::size_t kFrameHeadBytes = 4 + 1;  // body length, type

enum class FrameType : std::uint8_t {
    kMessage = 1,   // both directions: one message
    kAnnounce = 2,  // to the broker: this connection takes these routes
    kWithdraw = 3,  // to the broker: it takes them no longer
};

// destination, source, message id, header words 1 to 4, flag, length of the text, length of the payload; then the text
// and the payload themselves.
inline constexpr std::size_t kMessageHeadBytes = 4 + 4 + 4 + 4 * 4 + 1 + 4 + 4;
inline constexpr std::size_t kRouteBytes = 4 + 4;  // endpoint, message id

// Limits. A frame beyond them ends the connection that it came from.
inline constexpr std::size_t kMaxTextBytes = 64 * 1024;
inline constexpr std::size_t kMaxDataBytes = 16 * 1024 * 1024;
inline constexpr std::size_t kMaxBodyBytes = kMessageHeadBytes + kMaxTextBytes + kMaxDataBytes;

// Queues of a process [bytes]: frames not yet written to the pipe, and messages that a client has not yet delivered.
inline constexpr std::size_t kMaxUnsentBytes = 64 * 1024 * 1024;
inline constexpr std::size_t kMaxUndeliveredBytes = 64 * 1024 * 1024;

// What a queued message counts for beyond its own bytes.
inline constexpr std::size_t kQueuedMessageOverhead = 128;

}  // namespace ipc_client
