#pragma once

#include <functional>
#include <string>

#include "ipc_client/export.h"

// Levels of the library's log lines; the numbers are those of the host's logger.
inline constexpr int kIpcLogDetail = 3;  // connections come and go
inline constexpr int kIpcLogEvent = 4;   // something was refused, dropped or lost

// Sends the library's log lines (UTF-8, no line end) to `sink` from now on; an empty one brings standard error back,
// which is also the default. The sink is called on any thread, on several at once, and must not call the library.
// Once this has returned, a line that another thread began before may still reach the earlier sink. What a sink throws
// is ignored.
IPC_CLIENT_API void SetIpcLogSink(std::function<void(int level, const std::string& line)> sink);
