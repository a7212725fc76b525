#pragma once

#include <cstddef>

#include "kernel/export.h"

namespace kernel {

// The UI turn: one process-wide recursive lock that whoever touches page code or toolkit controls holds.
//
// The toolkit takes it for one input event, one layout or one painting; an IPC client takes it around each callback;
// the host takes it around CreateSetting and CloseWnd. So page code never runs on two threads at once, although the
// page itself takes no lock. Whoever blocks gives the turn up meanwhile (Sleep does so by itself).
//
// Turns are granted in the order in which they were asked for, so a busy UI thread cannot starve a delivery thread.
//
//     kernel::UiTurn turn;          // page code may run here
//     {
//         kernel::UiTurnPause pause;  // the turn is free, at whatever depth it was held
//         WaitForSomething();
//     }                             // held again, at the same depth
class KERNEL_API UiTurn {
public:
    // Waits until the turn is free, or goes one level deeper when this thread holds it.
    UiTurn();
    ~UiTurn();
    UiTurn(const UiTurn&) = delete;
    UiTurn& operator=(const UiTurn&) = delete;

    // Whether the calling thread holds the turn.
    static bool IsHeld();

    // How many threads wait for the turn at this moment.
    static std::size_t Waiting();
};

// Gives up the turn for its own lifetime and takes it again, as deep as before. Does nothing on a thread that does not
// hold the turn.
class KERNEL_API UiTurnPause {
public:
    UiTurnPause();
    ~UiTurnPause();
    UiTurnPause(const UiTurnPause&) = delete;
    UiTurnPause& operator=(const UiTurnPause&) = delete;

private:
    unsigned m_depth;  // levels to take again; 0 when this thread did not hold the turn
};

}  // namespace kernel
