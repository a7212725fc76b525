#pragma once

#include <cstdint>

#include "ledger.h"
#include "round_options.h"

namespace campaign {

// The message library between processes: a service with the broker, killed and started anew, and pages that post
// numbered messages over relays with faults. Everything accepted is to be handled, in order, and not twice in one life.
Tally PlayMessages(std::uint64_t seed, const RoundOptions& options);

}  // namespace campaign
