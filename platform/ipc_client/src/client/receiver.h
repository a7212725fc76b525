#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "base/mutex.h"
#include "wire/frame.h"

namespace ipc_client {

// The receiving half of one client: its callbacks, the messages that wait for them, and the thread that calls them.
//
// The thread asks for the UI turn before it looks a callback up. So whoever removes a callback while holding the turn
// knows that it is not being called, unless it gave the turn up itself; then WaitUntilDone waits.
class Receiver {
public:
    using Callback = std::function<void(TagIPCMessageItem&)>;

    // Told on the delivery thread, or by the destructor, and without a lock. It must not call the receiver.
    class Listener {
    public:
        virtual void HasRoom(Receiver& receiver) = 0;               // which was full
        virtual void Handled(std::uint64_t delivery) noexcept = 0;  // its callback has returned, or there is none

    protected:
        ~Listener() = default;
    };

    // Throws std::system_error when the thread cannot be started.
    Receiver(int endpointId, Listener& listener);

    // Ends the thread after the callback that it runs, giving up the UI turn meanwhile; what waits counts as handled.
    // Not on that thread.
    ~Receiver();

    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    int endpointId() const { return m_endpointId; }

    // A callback as it is kept. What it holds may do anything when it goes, so it is handed out and destroyed by the
    // caller, without a lock of this library.
    using Held = std::shared_ptr<const Callback>;

    Held Set(int msgId, Callback callback);     // the one before; null when there was none
    Held Remove(int msgId);                     // null when there was none
    std::unordered_map<int, Held> RemoveAll();  // by message id

    // Returns when the callback of that id (of any id) that was running is running no more, removed or not; at once on
    // the delivery thread.
    void WaitUntilDone(std::optional<int> msgId);

    struct Message {
        Message(const MessageView& view, const IpcSender& from, std::uint64_t number);
        std::size_t Cost() const { return item.text.size() + data.size() + kQueuedMessageOverhead; }

        TagIPCMessageItem item;  // `data` is set when the callback is called
        std::string data;        // with the zero byte that a string keeps behind its end
        IpcSender sender;
        std::uint64_t delivery;
    };

    // A copy of the message, which counts as that delivery: one, to be handed to Deliver.
    using Messages = std::list<Message>;
    static Messages Copy(const MessageView& view, const IpcSender& sender, std::uint64_t delivery);

    // Queues it. False when the receiver is full by that: whoever delivers waits for HasRoom. Any thread.
    bool Deliver(Messages copy) noexcept;

private:
    // Delivery thread.
    void DeliverMessages();
    bool WaitForMessage();  // false when the thread is to end
    struct Taken {
        Message message;
        Held callback;  // null when there is nothing to call; else EndCall is due
        bool wasFull;
    };
    std::optional<Taken> Take();
    void DeliverOne(Taken& taken);
    void EndCall();
    void TellOfRoom();
    void Call(const Callback& callback, Message& message) const;

    const int m_endpointId;
    Listener& m_listener;
    base::Mutex m_mutex;  // never held while the UI turn is waited for
    base::Condition m_arrived;
    base::Condition m_callEnded;
    std::unordered_map<int, Held> m_callbacks BASE_GUARDED_BY(m_mutex);
    Messages m_messages BASE_GUARDED_BY(m_mutex);
    std::size_t m_bytes BASE_GUARDED_BY(m_mutex) = 0;    // what m_messages cost
    bool m_isFull BASE_GUARDED_BY(m_mutex) = false;      // and whoever delivers waits
    bool m_calling BASE_GUARDED_BY(m_mutex) = false;     // a callback runs,
    int m_calledMsgId BASE_GUARDED_BY(m_mutex) = 0;      // for this id,
    unsigned m_callNumber BASE_GUARDED_BY(m_mutex) = 0;  // and is this one
    bool m_stopping BASE_GUARDED_BY(m_mutex) = false;
    std::thread m_thread;  // last: everything it uses is there before it starts
};

}  // namespace ipc_client
