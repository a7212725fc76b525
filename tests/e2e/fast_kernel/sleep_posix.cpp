#include <chrono>
#include <cstdlib>
#include <thread>

#include "kernel/sleep.h"
#include "kernel/ui_turn.h"

namespace kernel {

namespace {

// FAST_KERNEL_DIVISOR says what fraction of the time is waited.
int Divisor() {
    const char* const text = std::getenv("FAST_KERNEL_DIVISOR");
    const int divisor = text == nullptr ? 0 : std::atoi(text);
    return divisor > 0 ? divisor : 100;
}

}  // namespace

void Sleep(std::uint32_t milliseconds) {
    const UiTurnPause pause;
    std::this_thread::sleep_for(std::chrono::microseconds(std::uint64_t{1000} * milliseconds) / Divisor());
}

}  // namespace kernel
