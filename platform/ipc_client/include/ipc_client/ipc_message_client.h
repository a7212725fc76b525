#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>

#include "ipc_client/export.h"
#include "ipc_client/ipc_message_item.h"
#include "ipc_client/ipc_sender.h"

// One endpoint's way to the message pipe.
//
// All clients of a process share one connection per pipe. A client that only posts costs no thread; the first
// registered callback starts the client's delivery thread, on which all its callbacks run, one at a time, in the order
// in which the messages were posted. Around each callback the delivery thread holds the UI turn (kernel/ui_turn.h).
// What a callback throws ends only that callback: it is logged, and delivery goes on.
//
// Two callbacks of different clients must not unregister, or destroy, each other's client while both run: each would
// wait for the other's end for ever.
//
// Start order does not matter. What is posted before the broker, or the addressed callback, is there waits in bounded
// queues; a lost connection is opened again with increasing pauses and takes its registrations along. A client whose
// callbacks have 64 MiB to catch up with makes its process read no more from the pipe until half of that is done, and
// so whoever sends it that much wait.
class IPC_CLIENT_API IPCMessageClient {
public:
    // `endpointId`: what `destId` of incoming messages is matched with. `receives`: whether callbacks may be
    // registered. `exclusive`: reserved, false. `pipeName`: L"\\\\.\\Pipe\\NAME" (docs/protocol.md says where that is
    // on this system). Does not wait for the broker. Throws only std::bad_alloc.
    IPCMessageClient(int endpointId, bool receives, bool exclusive, const std::wstring& pipeName);

    // As UnRegisterMessageCallbackAll, then ends the delivery thread. The last client of a process and pipe waits up to
    // half a second for what was posted to be written. Gives up the UI turn while it waits. Not to be called from one
    // of its own callbacks.
    ~IPCMessageClient();

    IPCMessageClient(const IPCMessageClient&) = delete;
    IPCMessageClient& operator=(const IPCMessageClient&) = delete;

    // Calls `callback` with each message of that id from now on; replaces an earlier callback of that id. The item and
    // its payload live until the callback returns. A payload has a zero byte behind it, outside `dataLen`; an empty one
    // is a null pointer. Only a log line, and nothing registered, on a client that does not receive and when the
    // delivery thread cannot be started. Throws only std::bad_alloc. Any thread.
    void RegisterMessageCallback(int msgId, std::function<void(TagIPCMessageItem&)> callback);

    // The same for several ids at once. Messages of these ids that were posted before anybody was there come in the
    // order of their posts; were the ids registered one after the other, they would come id by id.
    void RegisterMessageCallbacks(const std::map<int, std::function<void(TagIPCMessageItem&)>>& callbacks);

    // Removes the callback of that id; false when there was none. Does not return while that callback runs on another
    // thread, and gives up the UI turn while it waits. May be called from a callback, its own included. Any thread.
    bool UnRegisterMessageCallback(int msgId);

    // Removes every callback, with the same promise; false when there was none.
    bool UnRegisterMessageCallbackAll();

    // Sends one message; the payload has been copied when the call returns. Never waits for the other side. False when
    // the message cannot be sent at all: its payload (16 MiB) or its text (64 KiB) is over the limit, `dataLen` is
    // negative or has no `data`, or too many of the process's messages are not done yet (64 MiB). True: it is kept
    // until the callbacks that it is for have returned, and takes effect once, in the order of the posts, also when a
    // connection breaks or a broker dies and another one comes; unless the process ends first, or the broker has to
    // drop it (docs/protocol.md), which it logs. Any thread.
    bool PostIPCMessage(const TagIPCMessageItem& item);

    // As PostIPCMessage, from the process of the broker only: the message is for these lives, for everybody when there
    // are none, if they are there now and listen. It waits for nobody, and nobody's absence is an error. At most 1,024
    // lives. `event`: what the message tells of, 0 for none; a process that has taken one of that event passes over it,
    // so the same may be told again to whoever comes back.
    bool PostTo(std::span<const IpcLife> lives, const TagIPCMessageItem& item, std::uint64_t event = 0);

private:
    class State;
    std::shared_ptr<State> m_state;
};
