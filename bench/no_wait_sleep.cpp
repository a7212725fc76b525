// A kernel library whose Sleep does not wait: the page's own pauses would hide what is measured. Whoever waits for the
// UI turn gets it nevertheless.
#include "kernel/sleep.h"
#include "kernel/ui_turn.h"

namespace kernel {

void Sleep(std::uint32_t) { const UiTurnPause pause; }

}  // namespace kernel
