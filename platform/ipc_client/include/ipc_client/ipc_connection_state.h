#pragma once

#include <string>

#include "ipc_client/export.h"

// Whether this process's connection to that pipe is open: a broker is there and the handshake is done. False also when
// the process has no client of that pipe. The answer may be old by the time it is used: it is for showing, not for
// deciding whether to post. Any thread.
IPC_CLIENT_API bool IsPipeConnected(const std::wstring& pipeName);
