#pragma once

#include <functional>

#include "ipc_client/export.h"
#include "ipc_client/ipc_message_item.h"

enum class IpcTraceEvent {
    kPosted,     // handed to PostIPCMessage
    kDelivered,  // about to be given to a callback
};

// Shows every message of this process's clients to `trace` from now on, on the thread that posts or delivers it; an
// empty one ends that. The item lives during the call. It must not call the library. For diagnostics.
IPC_CLIENT_API void SetIpcTrace(std::function<void(IpcTraceEvent event, const TagIPCMessageItem& item)> trace);
