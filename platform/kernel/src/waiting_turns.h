#pragma once

#include <cstddef>

namespace kernel {

// How many threads wait for the UI turn right now. For tests that need a thread to be in the queue.
std::size_t WaitingTurns();

}  // namespace kernel
