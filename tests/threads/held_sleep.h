#pragma once

#include <cstdint>

#include "kernel/export.h"

// A Sleep that takes no time, or as long as the test wants. It gives up the UI turn as the real one does. Any thread.
namespace held_sleep {

// From now on a Sleep of that many milliseconds lasts until LetGo.
KERNEL_API void Hold(std::uint32_t milliseconds);

// Returns when a thread is in such a Sleep; false when none comes.
KERNEL_API bool WaitForSleeper();

// Ends every Sleep; later ones take no time.
KERNEL_API void LetGo();

}  // namespace held_sleep
