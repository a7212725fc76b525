#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

// What goes wrong in one round of the campaign. All of it follows from the round's seed.
namespace campaign {

enum class Fault {
    kDelay,           // bytes wait for some milliseconds
    kSingleBytes,     // a run of bytes comes one by one
    kStall,           // nothing is read for so long that the writer notices
    kCutToBroker,     // the connection ends behind a byte that goes to the broker
    kCutToClient,     // and behind one that comes from it
    kDuplicate,       // somebody connects, too, and says what the connection said first
    kServiceKilled,   // the broker's process, and started anew
    kServiceStopped,  // asked to end, and started anew
    kPageKilled,      // the other process, and another one started
};

inline constexpr std::array kFaultNames = {
    "delay",     "single bytes",   "stall",           "cut to broker", "cut to client",
    "duplicate", "service killed", "service stopped", "page killed",
};
inline constexpr std::size_t kFaults = kFaultNames.size();

inline std::string_view NameOf(Fault fault) { return kFaultNames[static_cast<std::size_t>(fault)]; }
std::optional<Fault> FaultOf(std::string_view name);

// A fault of one direction of a connection.
struct StreamFault {
    Fault fault = Fault::kDelay;
    std::uint64_t at = 0;  // [bytes] that have passed before it
    int amount = 0;        // delay, stall, life of the duplicate [ms]; bytes that come singly
    int replayed = 0;      // [bytes] of the connection's first that the duplicate says
};

struct ConnectionPlan {
    std::vector<StreamFault> toBroker;  // by place
    std::vector<StreamFault> toClient;
};

// For connection number `connection` of the relay with this seed. Those behind the first few stay whole, so that every
// round comes to its end.
ConnectionPlan PlanOf(std::uint64_t seed, unsigned connection);

}  // namespace campaign
