#include "client/receiver.h"

#include <exception>
#include <utility>

#include "base/reason.h"
#include "diagnostics.h"
#include "kernel/ui_turn.h"

namespace ipc_client {

namespace {

thread_local IpcSender currentSender;

}  // namespace

Receiver::Message::Message(const MessageView& view, const IpcSender& from, std::uint64_t number)
    : item(HeaderOf(view)), data(view.data), sender(from), delivery(number) {
    item.dataLen = static_cast<std::int32_t>(data.size());
}

Receiver::Receiver(int endpointId, Listener& listener)
    : m_endpointId(endpointId), m_listener(listener), m_thread([this] { DeliverMessages(); }) {}

Receiver::~Receiver() {
    {
        const base::MutexLock lock(m_mutex);
        m_stopping = true;
    }
    m_arrived.NotifyOne();
    {
        const kernel::UiTurnPause pause;  // the thread may be waiting for the turn
        m_thread.join();
    }
    const base::MutexLock lock(m_mutex);
    for (const Message& message : m_messages) m_listener.Handled(message.delivery);
}

Receiver::Held Receiver::Set(int msgId, Callback callback) {
    Held held = std::make_shared<const Callback>(std::move(callback));
    const base::MutexLock lock(m_mutex);
    m_callbacks[msgId].swap(held);
    return held;
}

Receiver::Held Receiver::Remove(int msgId) {
    const base::MutexLock lock(m_mutex);
    auto node = m_callbacks.extract(msgId);
    return node ? std::move(node.mapped()) : nullptr;
}

std::unordered_map<int, Receiver::Held> Receiver::RemoveAll() {
    const base::MutexLock lock(m_mutex);
    return std::exchange(m_callbacks, {});
}

void Receiver::WaitUntilDone(std::optional<int> msgId) {
    if (std::this_thread::get_id() == m_thread.get_id()) return;
    unsigned callNumber = 0;
    {
        const base::MutexLock lock(m_mutex);
        if (!m_calling || (msgId && *msgId != m_calledMsgId)) return;
        callNumber = m_callNumber;
    }
    const kernel::UiTurnPause pause;  // before the lock: it must be given back before the turn is taken again
    const base::MutexLock lock(m_mutex);
    while (m_calling && m_callNumber == callNumber) m_callEnded.Wait(m_mutex);
}

Receiver::Messages Receiver::Copy(const MessageView& view, const IpcSender& sender, std::uint64_t delivery) {
    Messages copy;
    copy.emplace_back(view, sender, delivery);
    return copy;
}

bool Receiver::Deliver(Messages copy) noexcept {
    bool isFull = false;
    {
        const base::MutexLock lock(m_mutex);
        m_bytes += copy.front().Cost();
        m_messages.splice(m_messages.end(), copy);
        isFull = m_isFull = m_bytes > kMaxUndeliveredBytes;
    }
    m_arrived.NotifyOne();
    return !isFull;
}

void Receiver::DeliverMessages() {
    while (WaitForMessage()) {
        std::optional<Taken> taken;
        {
            const kernel::UiTurn turn;
            taken = Take();
            if (!taken) return;
            DeliverOne(*taken);
        }
        m_listener.Handled(taken->message.delivery);
        if (taken->wasFull) TellOfRoom();
    }
}

void Receiver::TellOfRoom() {
    {
        const base::MutexLock lock(m_mutex);
        if (!m_isFull || m_bytes > kMaxUndeliveredBytes / 2) return;
        m_isFull = false;
    }
    m_listener.HasRoom(*this);
}

bool Receiver::WaitForMessage() {
    const base::MutexLock lock(m_mutex);
    while (!m_stopping && m_messages.empty()) m_arrived.Wait(m_mutex);
    return !m_stopping;
}

// Nothing when the thread is to end: then the message stays.
std::optional<Receiver::Taken> Receiver::Take() {
    const base::MutexLock lock(m_mutex);
    if (m_stopping) return std::nullopt;
    Taken taken{std::move(m_messages.front()), nullptr, m_isFull};
    m_messages.pop_front();
    m_bytes -= taken.message.Cost();
    const auto entry = m_callbacks.find(taken.message.item.msgId);
    if (entry == m_callbacks.end()) return taken;
    taken.callback = entry->second;
    m_calling = true;
    m_calledMsgId = entry->first;
    ++m_callNumber;
    return taken;
}

void Receiver::DeliverOne(Taken& taken) {
    if (!taken.callback) return;
    currentSender = taken.message.sender;
    Call(*taken.callback, taken.message);
    currentSender = {};
    taken.callback.reset();  // what a removed callback holds goes before whoever removed it goes on
    EndCall();
}

void Receiver::EndCall() {
    const base::MutexLock lock(m_mutex);
    m_calling = false;
    m_callEnded.NotifyAll();
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

IpcSender CurrentIpcSender() { return ipc_client::currentSender; }
