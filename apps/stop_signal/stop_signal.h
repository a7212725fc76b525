#pragma once

namespace stop_signal {

// Holds back the signals that ask the process to stop, so that WaitForStopSignal gets them. Call in main, before any
// thread is made.
void HoldStopSignals();

// Waits until the process is asked to stop, and returns that signal's name.
const char* WaitForStopSignal();

}  // namespace stop_signal
