#include "base/child_system.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <thread>

#include "base/reason.h"

namespace base {

std::vector<std::string> ShellCommand(std::string text, const std::string& name) {
    return {"/bin/sh", "-c", std::move(text), name};
}

namespace child_system {

namespace {

constexpr int kFirstOther = STDERR_FILENO + 1;
constexpr int kLookAgain = 20;  // [ms] how late a reader sees that it is to stop

// A file of its own that is none of the three standard ones, which a child's are put onto one after the other.
File MovedAway(int descriptor, const char* what) {
    if (descriptor < 0) throw std::runtime_error(what + LastReason());
    File file(descriptor);
    if (descriptor >= kFirstOther) return file;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstOther);
    if (moved < 0) throw std::runtime_error(what + LastReason());
    return File(moved);
}

// The array that the system takes. It points into `texts`.
std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

// What the child has other than this process.
class SpawnSettings {
public:
    SpawnSettings(const ChildSettings& settings, const std::array<File, 3>& streams) {
        posix_spawnattr_init(&m_attributes);
        posix_spawn_file_actions_init(&m_actions);
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setpgroup(&m_attributes, 0);
        const int group = settings.ownGroup ? POSIX_SPAWN_SETPGROUP : 0;
        posix_spawnattr_setflags(&m_attributes,
                                 static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | group));
        for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            const File& given = streams[static_cast<std::size_t>(number)];
            const File& file = given ? given : streams[STDERR_FILENO];
            posix_spawn_file_actions_adddup2(&m_actions, file.Descriptor(), number);
        }
        posix_spawn_file_actions_addclosefrom_np(&m_actions, kFirstOther);
        if (!settings.folder.empty()) posix_spawn_file_actions_addchdir_np(&m_actions, settings.folder.c_str());
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

}  // namespace

File OpenNothing() { return MovedAway(open("/dev/null", O_RDWR | O_CLOEXEC), "/dev/null: "); }

File CreateNewFile(const std::filesystem::path& file) {
    return MovedAway(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600), "");
}

File CopyOfOwn(std::size_t stream) {
    const int copy = fcntl(static_cast<int>(stream), F_DUPFD_CLOEXEC, kFirstOther);
    return copy < 0 && errno == EBADF ? OpenNothing() : MovedAway(copy, "a standard stream: ");
}

// A pair of sockets: writing to one whose reader has gone can be told to raise no signal.
Pipe MakeInputPipe() {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw std::runtime_error("a pipe: " + LastReason());
    File ours(ends[0]);
    return {std::move(ours), MovedAway(ends[1], "a pipe: ")};
}

Pipe MakeOutputPipe() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("a pipe: " + LastReason());
    File ours(ends[0]);
    return {std::move(ours), MovedAway(ends[1], "a pipe: ")};
}

std::size_t Read(const File& pipe, char* bytes, std::size_t size, const std::atomic<bool>& stop) {
    while (!stop) {
        pollfd look{pipe.Descriptor(), POLLIN, 0};
        if (poll(&look, 1, kLookAgain) == 0) continue;
        const ssize_t got = read(pipe.Descriptor(), bytes, size);
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno != EINTR) return 0;
    }
    return 0;
}

std::size_t Write(const File& pipe, std::string_view bytes) {
    for (;;) {
        const ssize_t written = send(pipe.Descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written >= 0) return static_cast<std::size_t>(written);
        if (errno != EINTR) return 0;
    }
}

// posix_spawnp returns once the program has taken the new process over, or with the reason why it has not.
Started Start(const ChildSettings& settings, const std::vector<std::string>& environment,
              const std::array<File, 3>& streams) {
    const SpawnSettings spawn(settings, streams);
    pid_t child = 0;
    const int error = posix_spawnp(&child, settings.command.at(0).c_str(), spawn.Actions(), spawn.Attributes(),
                                   Pointers(settings.command).data(), Pointers(environment).data());
    if (error != 0) throw std::runtime_error(Reason(error));
    return {.id = child, .process = {}, .group = {}, .ownGroup = settings.ownGroup};
}

std::optional<ChildEnd> WaitForEnd(const Started& child, std::chrono::milliseconds limit) {
    std::this_thread::sleep_for(limit);
    int status = 0;
    const pid_t ended = waitpid(child.id, &status, WNOHANG);
    if (ended < 0 && errno != EINTR) throw std::runtime_error("waiting for a child: " + LastReason());
    if (ended <= 0) return std::nullopt;
    if (WIFSIGNALED(status)) return ChildEnd{.signal = WTERMSIG(status)};
    return ChildEnd{.code = static_cast<std::uint32_t>(WEXITSTATUS(status))};
}

bool AskToEnd(const Started& child) { return kill(child.id, SIGTERM) == 0; }

void Kill(const Started& child) { kill(child.ownGroup ? -child.id : child.id, SIGKILL); }

}  // namespace child_system
}  // namespace base
