#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>

#include "base/path.h"
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

// What the program has other than this one: its streams, and that no signal is held back.
class SpawnSettings {
public:
    SpawnSettings(int input, const std::filesystem::path& output) {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawnattr_init(&m_attributes);
        posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        const char* const file = output.empty() ? "/dev/null" : output.c_str();
        posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, file, O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (!output.empty()) posix_spawn_file_actions_adddup2(&m_actions, STDOUT_FILENO, STDERR_FILENO);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    const posix_spawn_file_actions_t* Actions() const { return &m_actions; }
    const posix_spawnattr_t* Attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_actions;
    posix_spawnattr_t m_attributes;
};

// The array that the system takes. It points into the texts.
std::vector<char*> Pointers(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> pointers{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

ChildPrograms::~ChildPrograms() {
    for (const auto& [program, process] : m_running) End(process);
}

// posix_spawn returns after the program has taken the new process over. Its standard input is a pipe that nobody writes
// to and that ends with this process.
void ChildPrograms::Start(const std::string& program, const std::vector<std::string>& arguments,
                          const std::filesystem::path& output) {
    if (m_running.contains(program)) throw std::runtime_error(program + " runs already");
    const auto file = base::ProgramFolder() / program;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error(base::Utf8FromPath(file) + ": " + Reason(errno));
    const SpawnSettings settings(ends[0], output);
    pid_t process = 0;
    const int error = posix_spawn(&process, file.c_str(), settings.Actions(), settings.Attributes(),
                                  Pointers(program, arguments).data(), environ);
    close(ends[0]);
    if (error != 0) {
        close(ends[1]);
        throw std::runtime_error(base::Utf8FromPath(file) + ": cannot be started: " + Reason(error));
    }
    m_running[program] = process;  // the pipe's other end stays open until this process ends
}

void ChildPrograms::Stop(const std::string& program) {
    const auto found = m_running.find(program);
    if (found == m_running.end()) throw std::runtime_error(program + " was not started by the script");
    End(found->second);
    m_running.erase(found);
}

// A process that has ended stays there to be waited for.
bool ChildPrograms::Runs(const std::string& program) const {
    const auto found = m_running.find(program);
    if (found == m_running.end()) return false;
    siginfo_t end{};
    return waitid(P_PID, static_cast<id_t>(found->second), &end, WEXITED | WNOHANG | WNOWAIT) != 0 || end.si_pid == 0;
}

}  // namespace settings_host
