#pragma once

namespace base {

// Holds back the signals that ask the process to stop, so that WaitForStopSignal gets them. Call in main, before any
// thread is made.
void HoldStopSignals();

// From now on the end of the standard input asks the process to stop, too, as the death of whoever started it brings it
// about; nothing else may read it. Call after HoldStopSignals.
void StopWithInput();

// Waits until the process is asked to stop, and returns that signal's name, or "end of input".
const char* WaitForStopSignal();

}  // namespace base
