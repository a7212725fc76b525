#include <chrono>
#include <cstdlib>
#include <filesystem>
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

// FAST_KERNEL_HOLD names a file: pauses of this length and more last for as long as it is there.
constexpr std::uint32_t kHeldPause = 1000;  // [ms]

void WaitWhileHeld() {
    constexpr std::chrono::milliseconds kLookAgain{1};
    const char* const file = std::getenv("FAST_KERNEL_HOLD");
    while (file != nullptr && std::filesystem::exists(file)) std::this_thread::sleep_for(kLookAgain);
}

}  // namespace

void Sleep(std::uint32_t milliseconds) {
    const UiTurnPause pause;
    if (milliseconds >= kHeldPause) WaitWhileHeld();
    std::this_thread::sleep_for(std::chrono::microseconds(std::uint64_t{1000} * milliseconds) / Divisor());
}

}  // namespace kernel
