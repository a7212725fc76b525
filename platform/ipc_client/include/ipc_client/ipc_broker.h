#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "ipc_client/export.h"

// What a broker keeps and for how long it is patient. The defaults suit every real use; tests choose smaller ones.
struct IPCBrokerLimits {
    // Messages that nobody has announced wait; beyond these bounds the oldest are dropped with a log line.
    std::size_t pendingMessagesPerRoute = 4096;           // of one (endpoint, message id)
    std::size_t pendingBytesPerRoute = 32 * 1024 * 1024;  // each message counts 128 bytes more than its frame
    std::size_t pendingBytes = 64 * 1024 * 1024;          // of all together
    std::size_t outgoingBytes = 64 * 1024 * 1024;         // unwritten to one connection, which is then closed
    std::chrono::milliseconds handshake{5000};            // after that a silent connection is closed
};

// The broker of one pipe: takes messages from every connection and hands each to all connections that have announced
// its (destination endpoint, message id). Runs in the service process, on a thread of its own.
//
//     IPCBroker broker(L"\\\\.\\Pipe\\iKorvelAssistant");
//     broker.Start();
//
// A connection that sends a frame that is wrong, that does not say hello, or that reads too slowly is closed with a log
// line; the others notice nothing. Peers of other users are refused.
class IPC_CLIENT_API IPCBroker {
public:
    explicit IPCBroker(const std::wstring& pipeName, const IPCBrokerLimits& limits = {});

    // Stops.
    ~IPCBroker();

    IPCBroker(const IPCBroker&) = delete;
    IPCBroker& operator=(const IPCBroker&) = delete;

    // Takes the pipe name and begins to serve; a second call does nothing. Throws std::runtime_error naming the path
    // and the system's reason when that fails, for instance because another live broker has the name. What a killed
    // broker left behind is replaced.
    void Start();

    // Closes every connection and gives the name back; waiting messages are lost. May be called again. Not from a
    // callback of the log sink.
    void Stop();

private:
    class Impl;
    const std::wstring m_pipeName;
    const IPCBrokerLimits m_limits;
    std::unique_ptr<Impl> m_impl;  // null while stopped
};
