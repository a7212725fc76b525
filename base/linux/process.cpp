#include "base/process.h"

#include <dlfcn.h>
#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <initializer_list>
#include <thread>

extern char** environ;

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

Arguments::Arguments(int argc, const char* const* argv) : m_texts(argv, argv + argc) { List(); }

std::vector<std::string> OwnEnvironment() {
    std::vector<std::string> variables;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    return variables;
}

bool ComesBefore(const std::string& name, const std::string& other) { return name < other; }

std::optional<std::string> Variable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

void SetVariable(const std::string& name, const std::optional<std::string>& value) {
    value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
}

std::string SystemLocale() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string value = Variable(name).value_or("");
        if (!value.empty()) return value;
    }
    return {};
}

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

void WriteToErrors(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno != EINTR) return;
        if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    }
}

// A pipe that has any room takes a page.
ErrorsTake HowErrorsTake(std::size_t bytes) {
    pollfd errors{STDERR_FILENO, POLLOUT, 0};
    if (poll(&errors, 1, 0) <= 0) return ErrorsTake::kNotNow;
    return bytes <= PIPE_BUF || (errors.revents & POLLERR) != 0 ? ErrorsTake::kAtOnce : ErrorsTake::kNotNow;
}

void StayLoaded() {
    Dl_info place{};
    if (dladdr(reinterpret_cast<void*>(&StayLoaded), &place) == 0) return;
    dlopen(place.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);  // not closed, and nothing for a program
}

}  // namespace base
