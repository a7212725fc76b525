#pragma once

#include <array>
#include <compare>
#include <cstdint>

#include "ipc_client/export.h"

// One life of a process on a pipe: random bytes that its connection has from its first client to its last one. All
// zero: nobody's.
struct IpcLife {
    std::array<std::uint8_t, 16> bytes{};
    auto operator<=>(const IpcLife&) const = default;
};

// Who sent a message, as the broker knows it from the system; nobody can say it of himself.
struct IpcSender {
    IpcLife life;               // zero: a peer that has not introduced itself
    std::uint32_t process = 0;  // the system's id
    std::uint32_t user = 0;     // the system's id; on Windows the last number of the user's security identifier
};

// The sender of the message whose callback runs on this thread; all zero outside callbacks.
IPC_CLIENT_API IpcSender CurrentIpcSender();

// Message ids by which the broker tells clients of its own process who comes and goes: whoever has a callback for them
// is told, at its own endpoint; the sender is the one that it is about. Nobody else's messages may have these ids.

// It has announced its first routes. Payload: one byte, 1 when it has known another broker, or this one longer ago than
// a broker remembers: what was sent to it may not have reached it.
inline constexpr int kIpcPeerArrived = -1;

// It has ended, or has not come back in time. No payload.
inline constexpr int kIpcPeerLeft = -2;
