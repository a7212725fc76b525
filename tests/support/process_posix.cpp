#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <sstream>
#include <system_error>

#include "test_process.h"

extern char** environ;

namespace test_process {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLookAgain(2);  // how often a process is looked at for its end

// A stream between the test and a program. A socket, not a pipe: writing to one whose reader has gone can be told to
// raise no signal, and reading can be ended although somebody still holds the other end.
struct Ends {
    int ours = -1;
    int theirs = -1;
};

Ends MakeStream() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    return {ends[0], ends[1]};
}

std::vector<std::string> Environment(const std::map<std::string, std::string>& replaced) {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        if (replaced.count(text.substr(0, text.find('='))) == 0) variables.push_back(text);
    }
    for (const auto& [name, value] : replaced) variables.push_back(name + "=" + value);
    return variables;
}

// The array that the system takes. It points into `texts`.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

int Spawn(std::vector<std::string> command, std::vector<std::string> environment, const std::array<int, 3>& streams) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int i = 0; i < 3; ++i) posix_spawn_file_actions_adddup2(&actions, streams[static_cast<std::size_t>(i)], i);
    pid_t id = 0;
    const int error =
        posix_spawn(&id, command[0].c_str(), &actions, nullptr, Pointers(command).data(), Pointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    for (const int stream : streams) close(stream);
    if (error != 0) throw std::system_error(error, std::generic_category(), command[0]);
    return id;
}

}  // namespace

Stream::Stream(int file) : m_file(file), m_reader([this] { ReadAll(); }) {}

Stream::~Stream() {
    shutdown(m_file, SHUT_RD);
    m_reader.join();
    close(m_file);
}

void Stream::ReadAll() {
    char buffer[4096];
    for (;;) {
        const ssize_t size = read(m_file, buffer, sizeof buffer);
        if (size < 0 && errno == EINTR) continue;
        const std::lock_guard guard(m_mutex);
        if (size > 0) m_text.append(buffer, static_cast<std::size_t>(size));
        m_ended = size <= 0;
        m_changed.notify_all();
        if (m_ended) return;
    }
}

bool Stream::WaitFor(const std::string& text, std::chrono::milliseconds patience) const {
    std::unique_lock lock(m_mutex);
    std::size_t lookFrom = 0;
    bool found = false;
    m_changed.wait_for(lock, patience, [&] {
        const std::size_t at = m_text.find(text, lookFrom);
        found = at != std::string::npos && m_text.find('\n', at + text.size()) != std::string::npos;
        if (at == std::string::npos && m_text.size() > text.size()) lookFrom = m_text.size() - text.size();
        return found || m_ended;
    });
    return found;
}

bool Stream::WaitForEnd(std::chrono::milliseconds patience) const {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, patience, [this] { return m_ended; });
}

std::string Stream::Text() const {
    const std::lock_guard guard(m_mutex);
    return m_text;
}

std::vector<std::string> Stream::Lines() const {
    std::vector<std::string> lines;
    std::istringstream text(Text());
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

Process::Process(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                 const std::map<std::string, std::string>& environment) {
    std::vector<std::string> command = {program.string()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const Ends input = MakeStream();
    const Ends output = MakeStream();
    const Ends errors = MakeStream();
    m_input = input.ours;
    m_output.emplace(output.ours);
    m_errors.emplace(errors.ours);
    m_id = Spawn(command, Environment(environment), {input.theirs, output.theirs, errors.theirs});
}

Process::~Process() {
    CloseInput();
    if (m_result) return;
    Signal(SIGKILL);
    WaitForEnd();
}

void Process::Write(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = send(m_input, text.data() + done, text.size() - done, MSG_NOSIGNAL);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        done += static_cast<std::size_t>(written);
    }
}

void Process::CloseInput() {
    if (m_input >= 0) close(m_input);
    m_input = -1;
}

void Process::Signal(int number) {
    if (!m_result) kill(m_id, number);
}

std::optional<int> Process::WaitForEnd(std::chrono::milliseconds patience) {
    const auto deadline = Clock::now() + patience;
    while (!m_result) {
        int status = 0;
        const pid_t ended = waitpid(m_id, &status, WNOHANG);
        if (ended == m_id) {
            m_result = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        } else if (Clock::now() >= deadline) {
            return std::nullopt;
        } else {
            std::this_thread::sleep_for(kLookAgain);
        }
    }
    constexpr std::chrono::seconds kLastWords(2);
    m_output->WaitForEnd(kLastWords);
    m_errors->WaitForEnd(kLastWords);
    return m_result;
}

}  // namespace test_process
