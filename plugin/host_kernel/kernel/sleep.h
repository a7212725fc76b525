#pragma once

#include <cstdint>

namespace kernel {

// The system's Sleep, under the name that page code calls. It knows no UI turn: a host that ships libraries of its own
// keeps page code to one thread at a time by its own means.
void Sleep(std::uint32_t milliseconds);

}  // namespace kernel
