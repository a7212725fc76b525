#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <system_error>

#include "service_process.h"

extern char** environ;

namespace update_service {

namespace {

struct Way {
    int number;
    const char* logged;
};
constexpr Way kWays[] = {{SIGTERM, "stops: SIGTERM"}, {SIGINT, "stops: SIGINT"}};

}  // namespace

ServiceProcess::ServiceProcess(std::vector<std::string> options, const std::filesystem::path& errors) {
    options.insert(options.begin(), UPDATE_SERVICE_PROGRAM);
    std::vector<char*> arguments;
    for (std::string& option : options) arguments.push_back(option.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 2, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    pid_t made = 0;
    const int error = posix_spawn(&made, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::system_error(error, std::generic_category(), options[0]);
    m_process = made;
}

ServiceProcess::~ServiceProcess() {
    if (m_process != 0) Kill();
}

std::vector<std::string> ServiceProcess::WaysToEnd() {
    std::vector<std::string> logged;
    for (const Way& way : kWays) logged.emplace_back(way.logged);
    return logged;
}

void ServiceProcess::AskToEnd(std::size_t way) { kill(static_cast<pid_t>(m_process), kWays[way].number); }

void ServiceProcess::Kill() {
    kill(static_cast<pid_t>(m_process), SIGKILL);
    Wait();
}

int ServiceProcess::Wait() {
    int status = 0;
    waitpid(static_cast<pid_t>(m_process), &status, 0);
    m_process = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace update_service
