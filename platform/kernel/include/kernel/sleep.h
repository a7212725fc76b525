#pragma once

#include <cstdint>

#include "kernel/export.h"

namespace kernel {

// Blocks the calling thread for that many milliseconds. If the thread holds the UI turn, it gives it up meanwhile: the
// window goes on repainting and taking clicks.
KERNEL_API void Sleep(std::uint32_t milliseconds);

}  // namespace kernel
