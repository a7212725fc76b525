#pragma once

#include <cstdint>

#include "ledger.h"
#include "round_options.h"

namespace campaign {

// The whole product: the built service on a catalogue of a few devices, the built host with the page, a relay with
// faults between them, and somebody who starts, pauses, resumes and retries updates while the service is killed and
// started anew. At the end every device is installed, no row is left, and page, host and service agree.
Tally PlayProduct(std::uint64_t seed, const RoundOptions& options);

}  // namespace campaign
