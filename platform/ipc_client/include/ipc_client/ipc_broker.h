#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "ipc_client/export.h"

// What a broker keeps and for how long it is patient. The defaults suit every real use; tests choose smaller ones.
struct IPCBrokerLimits {
    // Messages that nobody has announced wait; beyond these bounds the oldest of their sender are dropped, with a log
    // line: what one process posts costs no other one its messages.
    std::size_t pendingMessagesPerSender = 4096;
    std::size_t pendingBytesPerSender = 16 * 1024 * 1024;  // each message counts 512 bytes more than its frame
    std::size_t pendingBytes = 64 * 1024 * 1024;           // of all together; the sender that has most waiting pays

    // What a process has posted and its receivers have not taken. Beyond it no more is read from that process until
    // half of it has been taken; less when there are many connections.
    std::size_t senderBytes = 1024 * 1024;

    // Unwritten to a connection. A connection that is not of the broker's own process is closed beyond it, and the one
    // that most waits for when all together are beyond.
    std::size_t outgoingBytes = 64 * 1024 * 1024;
    std::size_t unfinishedBytes = 64 * 1024 * 1024;  // taken by long frames that have not come whole, of all together
    std::size_t routesPerConnection = 4096;          // announced; a connection that announces more is closed
    std::size_t connections = 1024;                  // of all; also at most half of what the system lets a process open
    std::size_t connectionsPerProcess = 64;          // of one that is not the broker's own

    // For how long a process that lives, was connected and has not said farewell counts as there: what is for it waits.
    std::chrono::milliseconds absence{600000};

    std::chrono::milliseconds handshake{5000};  // after that a silent connection is closed
    std::chrono::milliseconds linger{500};      // at the end, for what was posted to be read and written
};

// The broker of one pipe: takes messages from every connection and hands each to the connections that have announced
// its (destination endpoint, message id). Runs in the service process, on a thread of its own.
//
//     IPCBroker broker(L"\\\\.\\Pipe\\iKorvelAssistant");
//     broker.Start();
//
// The pipe is a star: the broker's own process, which is the service's, talks with everybody; any other process reaches
// the service and itself, but no third one. So nobody can speak in the service's name, or listen to what it is asked.
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

    // Takes no new connection, hands over what has been posted until now, closes every connection and gives the name
    // back; messages that wait are lost. Takes up to half a second when somebody does not read. May be called again.
    // Not from a callback of the log sink.
    void Stop();

private:
    class Impl;
    const std::wstring m_pipeName;
    const IPCBrokerLimits m_limits;
    std::unique_ptr<Impl> m_impl;  // null while stopped
};
