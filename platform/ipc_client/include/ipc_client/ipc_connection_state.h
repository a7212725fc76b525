#pragma once

#include <functional>
#include <string>

#include "ipc_client/export.h"

// Whether this process's connection to that pipe is open: a broker is there and the handshake is done. False also when
// the process has no client of that pipe. The answer may be old by the time it is used: it is for showing, not for
// deciding whether to post. Any thread.
IPC_CLIENT_API bool IsPipeConnected(const std::wstring& pipeName);

// Calls `changed` each time a connection of this process has opened, been lost, or not come about, on the thread that
// noticed; it should do no more than wake somebody who looks. An empty one ends that: no call runs once this returned.
// Must not be called from within `changed`. Any thread.
IPC_CLIENT_API void SetPipeConnectionSink(std::function<void()> changed);
