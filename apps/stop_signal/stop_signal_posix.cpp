#include <signal.h>

#include <initializer_list>

#include "stop_signal.h"

namespace stop_signal {
namespace {

sigset_t StopSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
    return signals;
}

}  // namespace

void HoldStopSignals() {
    const sigset_t signals = StopSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);  // a reader of the log that went away is no reason to end
}

const char* WaitForStopSignal() {
    const sigset_t signals = StopSignals();
    int number = 0;
    while (sigwait(&signals, &number) != 0) {
    }
    return number == SIGTERM ? "SIGTERM" : number == SIGINT ? "SIGINT" : "SIGHUP";
}

}  // namespace stop_signal
