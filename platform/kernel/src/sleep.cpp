#include "kernel/sleep.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "kernel/ui_turn.h"

namespace kernel {
namespace {

using Sleeper = std::function<void(std::uint32_t)>;

struct SleeperSlot {
    std::mutex mutex;
    std::shared_ptr<const Sleeper> sleeper;  // null: the time itself
};

// Never destroyed: delivery threads may sleep while the process exits.
SleeperSlot& Slot() {
    static SleeperSlot& slot = *new SleeperSlot;
    return slot;
}

std::shared_ptr<const Sleeper> CurrentSleeper() {
    const std::lock_guard lock(Slot().mutex);
    return Slot().sleeper;
}

}  // namespace

void Sleep(std::uint32_t milliseconds) {
    const UiTurnPause pause;
    if (const auto sleeper = CurrentSleeper()) return (*sleeper)(milliseconds);
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void SetSleeper(Sleeper sleeper) {
    auto shared = sleeper ? std::make_shared<const Sleeper>(std::move(sleeper)) : nullptr;
    const std::lock_guard lock(Slot().mutex);
    Slot().sleeper.swap(shared);
}

}  // namespace kernel
