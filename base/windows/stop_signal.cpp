#include "base/stop_signal.h"

#include <windows.h>

#include <thread>

#include "base/mutex.h"

namespace base {
namespace {

struct Asked {
    Mutex mutex;
    Condition came;
    const char* name GUARDED_BY(mutex) = nullptr;  // null: not yet
};

// Never destroyed: the system asks on a thread of its own, also while the process ends.
Asked& Request() {
    static Asked& asked = *new Asked;
    return asked;
}

const char* NameOf(DWORD event) {
    switch (event) {
        case CTRL_C_EVENT:
            return "CTRL_C_EVENT";
        case CTRL_BREAK_EVENT:
            return "CTRL_BREAK_EVENT";
        case CTRL_CLOSE_EVENT:
            return "CTRL_CLOSE_EVENT";
        case CTRL_LOGOFF_EVENT:
            return "CTRL_LOGOFF_EVENT";
        default:
            return "CTRL_SHUTDOWN_EVENT";
    }
}

void Ask(const char* name) {
    Asked& asked = Request();
    const MutexLock lock(asked.mutex);
    if (asked.name == nullptr) asked.name = name;
    asked.came.NotifyAll();
}

// After the window's close button, a logoff or a shutdown the system ends the process when this returns, so it does
// not: the process ends by itself, or the system's patience does.
BOOL WINAPI Handle(DWORD event) {
    Ask(NameOf(event));
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
    return TRUE;
}

}  // namespace

// A process that was started with Ctrl+C switched off gets it again.
void HoldStopSignals() {
    SetConsoleCtrlHandler(nullptr, FALSE);
    SetConsoleCtrlHandler(Handle, TRUE);
}

// Not through the C library, which keeps a stream that is read locked until the process has ended.
void StopWithInput() {
    std::thread([] {
        const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
        char bytes[512];
        DWORD size = 0;
        while (ReadFile(input, bytes, sizeof bytes, &size, nullptr) && size != 0) {
        }
        Ask("end of input");
    }).detach();  // lives as long as the process
}

const char* WaitForStopSignal() {
    Asked& asked = Request();
    const MutexLock lock(asked.mutex);
    while (asked.name == nullptr) asked.came.Wait(asked.mutex);
    const char* const name = asked.name;
    asked.name = nullptr;
    return name;
}

}  // namespace base
