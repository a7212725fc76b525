#include <windows.h>

#include "kernel/sleep.h"
#include "kernel/ui_turn.h"

namespace kernel {

void Sleep(std::uint32_t milliseconds) {
    const UiTurnPause pause;
    // The longest number means forever to the system.
    ::Sleep(milliseconds == INFINITE ? INFINITE - 1 : milliseconds);
}

}  // namespace kernel
