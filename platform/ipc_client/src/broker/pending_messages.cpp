#include "broker/pending_messages.h"

#include <algorithm>
#include <utility>

namespace ipc_client {
namespace {

std::size_t Cost(std::string_view frame) { return frame.size() + kQueuedMessageOverhead; }

}  // namespace

std::vector<PendingMessages::Dropped> PendingMessages::Add(Route route, std::string_view frame) {
    Queue& queue = m_queues[route];
    queue.numbers.push_back(m_nextNumber);
    queue.bytes += Cost(frame);
    m_bytes += Cost(frame);
    m_messages.emplace(m_nextNumber++, Message{route, std::string(frame)});

    std::vector<Dropped> dropped;
    while (queue.numbers.size() > 1 &&
           (queue.numbers.size() > m_limits.pendingMessagesPerRoute || queue.bytes > m_limits.pendingBytesPerRoute)) {
        dropped.push_back(DropOldest(route));
    }
    while (m_messages.size() > 1 && m_bytes > m_limits.pendingBytes) {
        dropped.push_back(DropOldest(m_messages.begin()->second.route));
    }
    return dropped;
}

PendingMessages::Dropped PendingMessages::DropOldest(Route route) {
    const auto queue = m_queues.find(route);
    const auto message = m_messages.find(queue->second.numbers.front());
    const std::size_t cost = Cost(message->second.frame);
    m_bytes -= cost;
    queue->second.bytes -= cost;
    queue->second.numbers.pop_front();
    m_messages.erase(message);
    const Dropped dropped{route, ++queue->second.dropped};
    if (queue->second.numbers.empty()) m_queues.erase(queue);
    return dropped;
}

std::vector<std::string> PendingMessages::Take(std::span<const Route> routes) {
    std::vector<std::uint64_t> numbers;
    for (const Route& route : routes) {
        const auto queue = m_queues.find(route);
        if (queue == m_queues.end()) continue;
        numbers.insert(numbers.end(), queue->second.numbers.begin(), queue->second.numbers.end());
        m_queues.erase(queue);
    }
    std::sort(numbers.begin(), numbers.end());
    std::vector<std::string> frames;
    frames.reserve(numbers.size());
    for (const std::uint64_t number : numbers) {
        frames.push_back(std::move(m_messages.extract(number).mapped().frame));
        m_bytes -= Cost(frames.back());
    }
    return frames;
}

}  // namespace ipc_client
