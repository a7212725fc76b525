#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ipc_client/ipc_broker.h"
#include "wire/frame.h"

namespace ipc_client {

// The broker's messages that nobody has announced yet. Beyond its bounds the oldest go: first of the message's own
// route, then of all. Not synchronised.
class PendingMessages {
public:
    explicit PendingMessages(const IPCBrokerLimits& limits) : m_limits(limits) {}

    // A message that had to go, and how many of its route went since its queue was last empty.
    struct Dropped {
        Route route;
        std::size_t soFar;
    };

    // Keeps one whole frame; says what had to go for it.
    std::vector<Dropped> Add(Route route, std::string_view frame);

    // Takes out the frames of these routes, in the order in which they were added, across the routes.
    std::vector<std::string> Take(std::span<const Route> routes);

    std::size_t Count() const { return m_messages.size(); }

private:
    struct Message {
        Route route;
        std::string frame;
    };
    struct Queue {
        std::deque<std::uint64_t> numbers;  // ascending keys of m_messages
        std::size_t bytes = 0;
        std::size_t dropped = 0;
    };

    Dropped DropOldest(Route route);

    IPCBrokerLimits m_limits;
    std::map<std::uint64_t, Message> m_messages;  // by number of arrival
    std::unordered_map<Route, Queue> m_queues;    // none is empty
    std::uint64_t m_nextNumber = 0;
    std::size_t m_bytes = 0;
};

}  // namespace ipc_client
