#include "base/stop_signal.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <initializer_list>
#include <thread>

namespace base {
namespace {

sigset_t StopSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
    return signals;
}

std::atomic<bool> inputEnded{false};

void ReadToTheEnd() {
    char bytes[512];
    for (;;) {
        const ssize_t size = read(STDIN_FILENO, bytes, sizeof bytes);
        if (size == 0 || (size < 0 && errno != EINTR)) return;
    }
}

}  // namespace

void HoldStopSignals() {
    const sigset_t signals = StopSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);  // a reader of the log that went away is no reason to end
}

void StopWithInput() {
    std::thread([] {
        ReadToTheEnd();
        inputEnded = true;
        kill(getpid(), SIGTERM);  // the one that waits for signals wakes
    }).detach();                  // lives as long as the process
}

const char* WaitForStopSignal() {
    const sigset_t signals = StopSignals();
    int number = 0;
    while (sigwait(&signals, &number) != 0) {
    }
    if (number == SIGTERM && inputEnded.exchange(false)) return "end of input";
    return number == SIGTERM ? "SIGTERM" : number == SIGINT ? "SIGINT" : "SIGHUP";
}

}  // namespace base
