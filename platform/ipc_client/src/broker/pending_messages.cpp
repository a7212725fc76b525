#include "broker/pending_messages.h"

#include <algorithm>
#include <new>
#include <utility>

namespace ipc_client {
namespace {

std::size_t Cost(std::string_view body) { return body.size() + kPendingMessageOverhead; }

}  // namespace

std::vector<PendingMessages::Dropped> PendingMessages::Add(Route route, Sender sender, const Origin& origin,
                                                           std::string_view body) {
    const std::uint64_t number = m_nextNumber++;
    m_messages.emplace(number, Message{route, sender, origin, std::string(body)});
    try {
        m_routes[route].insert(number);
        m_senders[sender].numbers.insert(number);
    } catch (const std::bad_alloc&) {
        Forget(route, sender, number);
        m_messages.erase(number);
        throw;
    }
    Share& share = m_senders.find(sender)->second;
    share.bytes += Cost(body);
    m_bytes += Cost(body);

    std::vector<Dropped> dropped;
    while (share.numbers.size() > 1 &&
           (share.numbers.size() > m_limits.pendingMessagesPerSender || share.bytes > m_limits.pendingBytesPerSender)) {
        dropped.push_back(DropOldest(sender));
    }
    while (m_messages.size() > 1 && m_bytes > m_limits.pendingBytes) dropped.push_back(DropOldest(Heaviest()));
    return dropped;
}

PendingMessages::Sender PendingMessages::Heaviest() const {
    const auto lighter = [](const auto& a, const auto& b) { return a.second.bytes < b.second.bytes; };
    return std::max_element(m_senders.begin(), m_senders.end(), lighter)->first;
}

PendingMessages::Dropped PendingMessages::DropOldest(Sender sender) {
    Share& share = m_senders.find(sender)->second;
    const std::size_t soFar = ++share.dropped;
    const Message message = Remove(m_messages.find(*share.numbers.begin()));
    return {message.route, message.origin, soFar};
}

PendingMessages::Message PendingMessages::Remove(Messages::iterator message) {
    Message removed = std::move(message->second);
    const std::size_t cost = Cost(removed.body);
    m_senders.find(removed.sender)->second.bytes -= cost;
    m_bytes -= cost;
    Forget(removed.route, removed.sender, message->first);
    m_messages.erase(message);
    return removed;
}

void PendingMessages::Forget(Route route, Sender sender, std::uint64_t number) {
    if (const auto entry = m_routes.find(route); entry != m_routes.end()) {
        entry->second.erase(number);
        if (entry->second.empty()) m_routes.erase(entry);
    }
    if (const auto entry = m_senders.find(sender); entry != m_senders.end()) {
        entry->second.numbers.erase(number);
        if (entry->second.numbers.empty()) m_senders.erase(entry);
    }
}

std::vector<PendingMessages::Taken> PendingMessages::Take(std::span<const Route> routes,
                                                          const std::function<bool(Sender)>& isFor) {
    Numbers numbers;
    for (const Route& route : routes) {
        const auto waiting = m_routes.find(route);
        if (waiting == m_routes.end()) continue;
        for (const std::uint64_t number : waiting->second) {
            if (isFor(m_messages.find(number)->second.sender)) numbers.insert(number);
        }
    }
    std::vector<Taken> taken;
    taken.reserve(numbers.size());
    for (const std::uint64_t number : numbers) {
        Message message = Remove(m_messages.find(number));
        taken.push_back({message.origin, std::move(message.body)});
    }
    return taken;
}

std::vector<NumberRange> PendingMessages::NumbersOf(unsigned peer, Sender sender) const {
    std::vector<NumberRange> numbers;
    const auto entry = m_senders.find(sender);
    if (entry == m_senders.end()) return numbers;
    for (const std::uint64_t arrival : entry->second.numbers) {
        const Origin& origin = m_messages.at(arrival).origin;
        if (origin.peer != peer) continue;
        if (!numbers.empty() && numbers.back().behind == origin.stamp.number) {
            ++numbers.back().behind;
        } else {
            numbers.push_back({origin.stamp.number, origin.stamp.number + 1});
        }
    }
    return numbers;
}

}  // namespace ipc_client
