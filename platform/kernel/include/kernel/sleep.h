#pragma once

#include <cstdint>
#include <functional>

#include "kernel/export.h"

namespace kernel {

// Blocks the calling thread for that many milliseconds. If the thread holds the UI turn, it gives it up meanwhile: the
// window goes on repainting and taking clicks.
KERNEL_API void Sleep(std::uint32_t milliseconds);

// From now on Sleep calls `sleeper` instead of blocking for that time, on the sleeping thread, which does not hold the
// UI turn meanwhile; an empty one brings the real time back. What a sleeper throws comes out of Sleep. A Sleep that has
// begun stays with the sleeper that it found. For a host whose page is to wait for longer or shorter, and for tests.
// Any thread.
KERNEL_API void SetSleeper(std::function<void(std::uint32_t milliseconds)> sleeper);

}  // namespace kernel
