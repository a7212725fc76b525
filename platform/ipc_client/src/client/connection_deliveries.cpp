// How messages reach their receivers, and how that is acknowledged: the other half of Connection.

#include <asio/post.hpp>
#include <exception>
#include <new>
#include <utility>

#include "client/connection.h"

namespace ipc_client {
namespace {

constexpr std::size_t kMostEvents = 4096;
constexpr std::chrono::milliseconds kAcknowledgeDelay{1};  // so that several messages share a frame

}  // namespace

void Connection::TakeDelivery(const DeliveryView& delivery) {
    if (!m_isIntroduced) throw ProtocolError("a message before the introduction");
    const MessageView message = DecodeMessage(delivery.messageBody);
    const std::uint64_t number = m_deliveries.Begin();
    {
        const base::MutexLock lock(m_routesMutex);
        Copies copies = CopiesOf(message, delivery.stamp, number);
        DeliverToAll(copies);
    }
    Handled(number);
    AcknowledgeLater();
}

// A copy for each receiver, if the message is new. Where there is no memory for all of them, it counts as one that has
// not come, and comes again on the next connection.
Connection::Copies Connection::CopiesOf(const MessageView& message, const Stamp& stamp, std::uint64_t delivery) {
    try {
        Copies copies;
        if (const auto entry = m_receivers.find(message.route()); entry != m_receivers.end()) {
            copies.reserve(entry->second.size());
            for (Receiver* receiver : entry->second) {
                copies.emplace_back(receiver, Receiver::Copy(message, stamp.sender, delivery));
            }
        }
        return IsNew(stamp) ? std::move(copies) : Copies();
    } catch (...) {
        m_deliveries.TakeBack();
        throw;
    }
}

// What this process has sent to itself may come again, from the next broker. Everything else comes once: the service
// dies with its broker.
bool Connection::IsNew(const Stamp& stamp) {
    if (stamp.event != 0 && !IsNewEvent(stamp.event)) return false;
    return stamp.sender.life != m_life || m_taken.Add(stamp.number);
}

bool Connection::IsNewEvent(std::uint64_t event) {
    if (m_events.contains(event)) return false;
    m_eventsInOrder.push_back(event);
    try {
        m_events.insert(event);
    } catch (...) {
        m_eventsInOrder.pop_back();
        throw;
    }
    if (m_eventsInOrder.size() > kMostEvents) {
        m_events.erase(m_eventsInOrder.front());
        m_eventsInOrder.pop_front();
    }
    return true;
}

void Connection::DeliverToAll(Copies& copies) noexcept {
    for (auto& [receiver, copy] : copies) {
        m_deliveries.Hold(copy.front().delivery);
        if (receiver->Deliver(std::move(copy))) continue;
        try {
            m_full.insert(receiver);
            m_channel->Pause();
        } catch (const std::bad_alloc&) {  // with the next message
        }
    }
}

void Connection::Handled(std::uint64_t delivery) noexcept {
    if (!m_deliveries.Release(delivery)) return;
    try {
        asio::post(m_io, [this] { Acknowledge(); });
    } catch (const std::exception&) {  // no memory
        m_deliveries.WaitOn();
    }
}

void Connection::AcknowledgeLater() {
    if (m_isToAcknowledge) return;
    m_acknowledgeAt.expires_after(kAcknowledgeDelay);
    m_acknowledgeAt.async_wait([this](std::error_code cancelled) {
        m_isToAcknowledge = false;
        if (!cancelled) Acknowledge();
    });
    m_isToAcknowledge = true;
}

// Acknowledges what has been handled. What has not, is when it has.
void Connection::Acknowledge() {
    try {
        const std::vector<NumberRange> handled = m_deliveries.Handled();
        if (handled.empty()) return;
        std::string frame;
        AppendNumbers(frame, FrameType::kAcknowledge, handled);
        const base::MutexLock lock(m_stateMutex);
        if (!m_open) return;  // GoOn will tell
        m_open->Append(frame);
        m_open->Flush();
    } catch (const std::exception& error) {
        if (m_channel) m_channel->Close(error.what());
    }
}

}  // namespace ipc_client
