#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "broker/origin.h"
#include "ipc_client/ipc_broker.h"
#include "wire/frame.h"

namespace ipc_client {

// What a waiting message takes beyond its frame, measured: three nodes, its route, and what the heap adds.
inline constexpr std::size_t kPendingMessageOverhead = 512;  // [bytes]

// The broker's messages that nobody has announced yet. Beyond its bounds the oldest go: of the message's own sender,
// and when all together are too many, of the sender that has most. Not synchronised.
class PendingMessages {
public:
    using Sender = unsigned;  // the number of a peer; 0: the service

    explicit PendingMessages(const IPCBrokerLimits& limits) : m_limits(limits) {}

    // A message that had to go, and how many of its sender went since its queue was last empty.
    struct Dropped {
        Route route;
        Origin origin;
        std::size_t soFar;
    };

    // Keeps the body of a message; says what had to go for it.
    std::vector<Dropped> Add(Route route, Sender sender, const Origin& origin, std::string_view body);

    struct Taken {
        Origin origin;
        std::string body;
    };

    // Takes out the messages of these routes, of the senders that `isFor` names, in the order in which they were added,
    // across the routes.
    std::vector<Taken> Take(std::span<const Route> routes, const std::function<bool(Sender)>& isFor);

    // Which messages of that peer there are, by its own numbers.
    std::vector<NumberRange> NumbersOf(unsigned peer, Sender sender) const;

    std::size_t Count() const { return m_messages.size(); }

private:
    struct Message {
        Route route;
        Sender sender;
        Origin origin;
        std::string body;
    };
    using Messages = std::map<std::uint64_t, Message>;  // by number of arrival
    using Numbers = std::set<std::uint64_t>;            // of messages
    struct Share {
        Numbers numbers;
        std::size_t bytes = 0;
        std::size_t dropped = 0;
    };

    Message Remove(Messages::iterator message);
    void Forget(Route route, Sender sender, std::uint64_t number);
    Dropped DropOldest(Sender sender);
    Sender Heaviest() const;

    IPCBrokerLimits m_limits;
    Messages m_messages;
    std::unordered_map<Route, Numbers> m_routes;  // neither has an entry without messages
    std::unordered_map<Sender, Share> m_senders;
    std::uint64_t m_nextNumber = 0;
    std::size_t m_bytes = 0;
};

}  // namespace ipc_client
