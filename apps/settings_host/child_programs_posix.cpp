#include <cerrno>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "child_programs.h"

extern char** environ;

namespace settings_host {

namespace {

std::string Reason(int error) { return std::generic_category().message(error); }

void End(int process) {
    kill(process, SIGTERM);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace

ChildPrograms::~ChildPrograms() {
    for (const auto& [program, process] : m_running) End(process);
}

// posix_spawn returns after the program has taken the new process over. Its standard input is a pipe that nobody writes
// to and that ends with this process.
void ChildPrograms::Start(const std::string& program) {
    if (m_running.count(program) != 0) throw std::runtime_error(program + " runs already");
    const auto file = std::filesystem::read_symlink("/proc/self/exe").parent_path() / program;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error(file.string() + ": " + Reason(errno));
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes;  // the program is to be stopped by signals that this one may hold back
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    char* const arguments[] = {const_cast<char*>(program.c_str()), nullptr};
    pid_t process = 0;
    const int error = posix_spawn(&process, file.c_str(), &actions, &attributes, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    close(ends[0]);
    if (error != 0) {
        close(ends[1]);
        throw std::runtime_error(file.string() + ": cannot be started: " + Reason(error));
    }
    m_running[program] = process;  // the pipe's other end stays open until this process ends
}

void ChildPrograms::Stop(const std::string& program) {
    const auto found = m_running.find(program);
    if (found == m_running.end()) throw std::runtime_error(program + " was not started by the script");
    End(found->second);
    m_running.erase(found);
}

}  // namespace settings_host
