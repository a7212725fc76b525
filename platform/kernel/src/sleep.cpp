#include "kernel/sleep.h"

#include <chrono>
#include <thread>
#include <utility>

#include "base/sink_slot.h"
#include "kernel/ui_turn.h"

namespace kernel {
namespace {

// Never destroyed: delivery threads may sleep while the process exits.
auto& Sleeper() {
    static auto& slot = *new base::SinkSlot<std::uint32_t>;
    return slot;
}

}  // namespace

void Sleep(std::uint32_t milliseconds) {
    const UiTurnPause pause;
    if (Sleeper().Call(milliseconds)) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void SetSleeper(std::function<void(std::uint32_t milliseconds)> sleeper) { Sleeper().Set(std::move(sleeper)); }

}  // namespace kernel
