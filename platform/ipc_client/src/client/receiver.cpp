#include "client/receiver.h"

#include <exception>
#include <utility>

#include "base/reason.h"
#include "diagnostics.h"
#include "kernel/ui_turn.h"

namespace ipc_client {

// So the queue is never empty behind a message that has just come.
static_assert(kMaxUndeliveredBytes >= kMaxTextBytes + kMaxDataBytes + kQueuedMessageOverhead);

Receiver::Message::Message(const MessageView& view) : data(view.data) {
    item.text = view.text;
    item.destId = view.destId;
    item.sourceId = view.sourceId;
    item.msgId = view.msgId;
    item.headerWord1 = view.headerWord1;
    item.headerWord2 = view.headerWord2;
    item.headerWord3 = view.headerWord3;
    item.headerWord4 = view.headerWord4;
    item.flag = view.flag;
    item.dataLen = static_cast<std::int32_t>(data.size());
}

Receiver::Receiver(int endpointId) : m_endpointId(endpointId), m_thread([this] { DeliverMessages(); }) {}

Receiver::~Receiver() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_arrived.notify_one();
    const kernel::UiTurnPause pause;  // the thread may be waiting for the turn
    m_thread.join();
}

Receiver::Held Receiver::Set(int msgId, Callback callback) {
    Held held = std::make_shared<const Callback>(std::move(callback));
    const std::lock_guard lock(m_mutex);
    m_callbacks[msgId].swap(held);
    return held;
}

Receiver::Held Receiver::Remove(int msgId) {
    const std::lock_guard lock(m_mutex);
    auto node = m_callbacks.extract(msgId);
    return node ? std::move(node.mapped()) : nullptr;
}

std::unordered_map<int, Receiver::Held> Receiver::RemoveAll() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_callbacks, {});
}

void Receiver::WaitUntilDone(std::optional<int> msgId) {
    if (std::this_thread::get_id() == m_thread.get_id()) return;
    unsigned callNumber = 0;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_calling || (msgId && *msgId != m_calledMsgId)) return;
        callNumber = m_callNumber;
    }
    const kernel::UiTurnPause pause;  // before the lock: it must be given back before the turn is taken again
    std::unique_lock lock(m_mutex);
    m_callEnded.wait(lock, [&] { return !m_calling || m_callNumber != callNumber; });
}

void Receiver::Deliver(const MessageView& view) {
    Message message(view);
    std::deque<Message> dropped;  // freed without the lock
    std::size_t droppedSoFar = 0;
    {
        const std::lock_guard lock(m_mutex);
        m_bytes += message.Cost();
        m_messages.push_back(std::move(message));
        while (m_bytes > kMaxUndeliveredBytes) {
            m_bytes -= m_messages.front().Cost();
            dropped.push_back(std::move(m_messages.front()));
            m_messages.pop_front();
            droppedSoFar = ++m_dropped;
        }
    }
    m_arrived.notify_one();
    if (droppedSoFar == 0 || !IsWorthALine(droppedSoFar)) return;
    Log(kIpcLogEvent, "the callbacks take too long, the oldest message dropped (" + std::to_string(droppedSoFar) +
                          " so far): " + Describe({dropped.front().item.destId, dropped.front().item.msgId}));
}

void Receiver::DeliverMessages() {
    while (true) {
        {
            std::unique_lock lock(m_mutex);
            m_arrived.wait(lock, [this] { return m_stopping || !m_messages.empty(); });
            if (m_stopping) return;
        }
        const kernel::UiTurn turn;
        std::unique_lock lock(m_mutex);
        if (m_stopping) return;
        DeliverOne(lock);
    }
}

void Receiver::DeliverOne(std::unique_lock<std::mutex>& lock) {
    Message message = std::move(m_messages.front());
    m_messages.pop_front();
    m_bytes -= message.Cost();
    const auto entry = m_callbacks.find(message.item.msgId);
    if (entry == m_callbacks.end()) return;
    Held callback = entry->second;
    m_calling = true;
    m_calledMsgId = message.item.msgId;
    ++m_callNumber;
    lock.unlock();
    Call(*callback, message);
    callback.reset();  // what a removed callback holds goes before whoever removed it goes on
    lock.lock();
    m_calling = false;
    m_callEnded.notify_all();
}

void Receiver::Call(const Callback& callback, Message& message) const {
    message.item.data = message.data.empty() ? nullptr : message.data.data();
    const Route route{message.item.destId, message.item.msgId};
    try {
        Trace(IpcTraceEvent::kDelivered, message.item);
        callback(message.item);
    } catch (const std::exception& error) {
        Log(kIpcLogEvent, "the callback for " + Describe(route) + " threw: " + base::Reason(error));
    } catch (...) {
        Log(kIpcLogEvent, "the callback for " + Describe(route) + " threw something that is no exception");
    }
}

}  // namespace ipc_client
