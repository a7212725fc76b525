#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "isolated_run.h"

namespace {

constexpr char kComplete = '\n';  // the last byte of a whole answer

void WriteAll(int fd, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0) return;
        done += static_cast<std::size_t>(n);
    }
}

std::string ReadAll(int fd) {
    std::string text;
    char buffer[4096];
    for (;;) {
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return text;
        text.append(buffer, static_cast<std::size_t>(n));
    }
}

std::string Ending(int status) {
    if (WIFSIGNALED(status)) return "the process ended by signal " + std::to_string(WTERMSIG(status));
    return "the process ended with exit code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

std::string RunIsolated(const std::function<std::string()>& work) {
    int ends[2];
    if (pipe(ends) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (child == 0) {
        close(ends[0]);
        WriteAll(ends[1], work() + kComplete);
        close(ends[1]);
        std::exit(0);  // not _exit: a leak checker has its say
    }
    close(ends[1]);
    std::string answer = ReadAll(ends[0]);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (!answer.ends_with(kComplete) || status != 0) return Ending(status);
    answer.pop_back();
    return answer;
}
