#pragma once

#include "ipc_client/ipc_trace.h"

namespace ipc_client {

// Shows one message to the trace, if there is one. Any thread.
void Trace(IpcTraceEvent event, const TagIPCMessageItem& item);

}  // namespace ipc_client
