#include "fault_plan.h"

#include <algorithm>

#include "random.h"

namespace campaign {

namespace {

constexpr int kHandshake = 100;       // [bytes] within which a connection says who is who
constexpr int kEarly = 2000;          // [bytes]
constexpr int kLate = 40'000;         // [bytes] about what one side says in a round
constexpr int kVeryLate = 2'000'000;  // [bytes] of one that says much
constexpr int kMostReplayed = 80;     // [bytes] no message is whole in them: said twice, it would have been said twice
constexpr int kMostCutConnections = 3;  // of a relay

std::uint64_t Place(Random& random) {
    const int kind = random.Between(0, 3);
    const int late = random.Chance(10) ? kVeryLate : kLate;
    const int end = kind == 0 ? kHandshake : kind == 1 ? kEarly : late;
    return static_cast<std::uint64_t>(random.Between(0, end));
}

void AddHindrances(Random& random, std::vector<StreamFault>& faults) {
    for (int i = random.Between(0, 3); i > 0; --i) {
        faults.push_back({Fault::kDelay, Place(random), random.Between(1, 8), 0});
    }
    if (random.Chance(50)) faults.push_back({Fault::kSingleBytes, Place(random), random.Between(1, 1500), 0});
    if (random.Chance(15)) faults.push_back({Fault::kStall, Place(random), random.Between(30, 120), 0});
}

void Sort(std::vector<StreamFault>& faults) {
    std::stable_sort(faults.begin(), faults.end(),
                     [](const StreamFault& one, const StreamFault& other) { return one.at < other.at; });
}

}  // namespace

std::optional<Fault> FaultOf(std::string_view name) {
    const auto* const found = std::find(kFaultNames.begin(), kFaultNames.end(), name);
    if (found == kFaultNames.end()) return std::nullopt;
    return static_cast<Fault>(found - kFaultNames.begin());
}

ConnectionPlan PlanOf(std::uint64_t seed, unsigned connection) {
    Random whole(seed);
    const auto cutConnections = static_cast<unsigned>(whole.Between(0, kMostCutConnections));
    Random random(whole.Next() + connection);
    ConnectionPlan plan;
    AddHindrances(random, plan.toBroker);
    AddHindrances(random, plan.toClient);
    if (connection < cutConnections) {
        const bool toBroker = random.Chance(50);
        (toBroker ? plan.toBroker : plan.toClient)
            .push_back({toBroker ? Fault::kCutToBroker : Fault::kCutToClient, Place(random), 0, 0});
    }
    if (connection <= cutConnections && random.Chance(20)) {
        plan.toBroker.push_back(
            {Fault::kDuplicate, Place(random), random.Between(0, 30), random.Between(0, kMostReplayed)});
    }
    Sort(plan.toBroker);
    Sort(plan.toClient);
    return plan;
}

}  // namespace campaign
