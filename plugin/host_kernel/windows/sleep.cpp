#include "kernel/sleep.h"

#include <windows.h>

namespace kernel {

// The system's. It knows no UI turn: a host that ships libraries of its own keeps page code to one thread at a time by
// its own means.
void Sleep(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

}  // namespace kernel
