#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>

#include "installer.h"

extern char** environ;

namespace update_service {
namespace {

using Clock = std::chrono::steady_clock;

// The arrays that the system takes. They point into `texts`.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> Environment(const InstallerCall& call) {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable; ++variable) {
        const std::string text = *variable;
        const auto isReplaced = [&](const auto& entry) { return text.starts_with(entry.first + "="); };
        if (std::none_of(call.environment.begin(), call.environment.end(), isReplaced)) variables.push_back(text);
    }
    for (const auto& [name, value] : call.environment) variables.push_back(name + "=" + value);
    return variables;
}

// How the child differs from the service: signals as at a program's start, a process group of its own, no input, and
// output where the log goes.
class SpawnSettings {
public:
    explicit SpawnSettings(const InstallerCall& call) {
        posix_spawnattr_init(&m_attributes);
        posix_spawn_file_actions_init(&m_actions);
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setpgroup(&m_attributes, 0);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
        posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&m_actions, STDERR_FILENO, STDOUT_FILENO);
        posix_spawn_file_actions_addchdir_np(&m_actions, call.folder.c_str());
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    const posix_spawnattr_t* Attributes() const { return &m_attributes; }
    const posix_spawn_file_actions_t* Actions() const { return &m_actions; }

private:
    posix_spawnattr_t m_attributes;
    posix_spawn_file_actions_t m_actions;
};

// Looks for the child's end, seldom when it takes long. Nothing when it is abandoned.
std::optional<int> WaitFor(pid_t child, const std::stop_token& stop, std::chrono::milliseconds grace) {
    std::mutex mutex;
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    std::chrono::milliseconds pause(1);
    std::optional<Clock::time_point> deadline;
    for (;;) {
        int status = 0;
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child) return status;
        if (ended < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "waiting for it");
        if (stop.stop_requested() && !deadline) deadline = Clock::now() + grace;
        if (deadline && Clock::now() >= *deadline) return std::nullopt;
        // Once the stop has been noticed, its token would end every further wait at once.
        wake.wait_for(lock, deadline ? std::stop_token() : stop, pause, [] { return false; });
        pause = std::min(pause * 2, std::chrono::milliseconds(20));
    }
}

InstallerResult Judge(int status) {
    if (WIFSIGNALED(status)) return {InstallerEnd::kFailed, "signal " + std::to_string(WTERMSIG(status))};
    if (WEXITSTATUS(status) != 0) return {InstallerEnd::kFailed, "exit status " + std::to_string(WEXITSTATUS(status))};
    return {InstallerEnd::kSucceeded, ""};
}

}  // namespace

InstallerResult RunInstaller(const InstallerCall& call, const std::stop_token& stop, std::chrono::milliseconds grace) {
    std::vector<std::string> command = call.command;
    std::vector<std::string> environment = Environment(call);
    const SpawnSettings settings(call);
    pid_t child = 0;
    const int error = posix_spawnp(&child, command[0].c_str(), settings.Actions(), settings.Attributes(),
                                   Pointers(command).data(), Pointers(environment).data());
    if (error != 0) return {InstallerEnd::kFailed, "cannot be started: " + std::generic_category().message(error)};
    try {
        const std::optional<int> status = WaitFor(child, stop, grace);
        return status ? Judge(*status) : InstallerResult{InstallerEnd::kAbandoned, ""};
    } catch (const std::system_error& waitError) {
        return {InstallerEnd::kFailed, waitError.what()};
    }
}

}  // namespace update_service
