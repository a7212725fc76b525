#include "held_sleep.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "kernel/sleep.h"
#include "kernel/ui_turn.h"

namespace {

struct Gate {
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<std::uint32_t> held;  // [ms]
    int sleepers = 0;
};

// Never destroyed: delivery threads may sleep while the process exits.
Gate& TheGate() {
    static Gate& gate = *new Gate;
    return gate;
}

}  // namespace

namespace held_sleep {

void Hold(std::uint32_t milliseconds) {
    Gate& gate = TheGate();
    const std::lock_guard lock(gate.mutex);
    gate.held = milliseconds;
}

bool WaitForSleeper() {
    Gate& gate = TheGate();
    std::unique_lock lock(gate.mutex);
    return gate.changed.wait_for(lock, std::chrono::seconds(30), [&gate] { return gate.sleepers != 0; });
}

void LetGo() {
    Gate& gate = TheGate();
    const std::lock_guard lock(gate.mutex);
    gate.held.reset();
    gate.changed.notify_all();
}

}  // namespace held_sleep

namespace kernel {

void Sleep(std::uint32_t milliseconds) {
    const UiTurnPause pause;
    Gate& gate = TheGate();
    std::unique_lock lock(gate.mutex);
    ++gate.sleepers;
    gate.changed.notify_all();
    gate.changed.wait(lock, [&] { return gate.held != milliseconds; });
    --gate.sleepers;
}

}  // namespace kernel
