#pragma once

#include <functional>
#include <string>

#include "ipc_client/export.h"
#include "ipc_client/ipc_message_item.h"

// What the library tells of itself: its log, its messages, its connections.

// Levels of the library's log lines; the numbers are those of the host's logger.
inline constexpr int kIpcLogDetail = 3;  // connections come and go
inline constexpr int kIpcLogEvent = 4;   // something was refused, dropped or lost

// Sends the library's log lines (UTF-8, no line end) to `sink` from now on; an empty one brings standard error back,
// which is also the default. The sink is called on any thread, on several at once, and must not call the library.
// Once this has returned, a line that another thread began before may still reach the earlier sink. What a sink throws
// is ignored.
IPC_CLIENT_API void SetIpcLogSink(std::function<void(int level, const std::string& line)> sink);

enum class IpcTraceEvent {
    kPosted,     // handed to PostIPCMessage
    kDelivered,  // about to be given to a callback
};

// Shows every message of this process's clients to `trace` from now on, on the thread that posts or delivers it; an
// empty one ends that. The item lives during the call. It must not call the library. What it throws is ignored. For
// diagnostics.
IPC_CLIENT_API void SetIpcTrace(std::function<void(IpcTraceEvent event, const TagIPCMessageItem& item)> trace);

// Whether this process's connection to that pipe is open: a broker is there and the handshake is done. False also when
// the process has no client of that pipe. The answer may be old by the time it is used: it is for showing, not for
// deciding whether to post. Any thread.
IPC_CLIENT_API bool IsPipeConnected(const std::wstring& pipeName);

// Calls `changed` each time a connection of this process has opened, been lost, or not come about, on the thread that
// noticed; it should do no more than wake somebody who looks. An empty one ends that: no call runs once this returned.
// Must not be called from within `changed`. Any thread.
IPC_CLIENT_API void SetPipeConnectionSink(std::function<void()> changed);
