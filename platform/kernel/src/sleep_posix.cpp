#include <chrono>
#include <thread>

#include "kernel/sleep.h"
#include "kernel/ui_turn.h"

namespace kernel {

void Sleep(std::uint32_t milliseconds) {
    const UiTurnPause pause;
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace kernel
