#include "isolated_run.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#if defined(_WIN32)
#define popen _popen
#define pclose _pclose
#else
#include <sys/wait.h>
#endif

namespace {

// For the system's shell. None of the texts holds a quotation mark: they are names of files, and numbers.
std::string CommandLine(const std::string& program, const std::vector<std::string>& arguments) {
    std::string line = '"' + program + '"';
    for (const std::string& argument : arguments) line += " \"" + argument + '"';
#if defined(_WIN32)
    line = '"' + line + '"';  // its shell takes the outermost marks away
#endif
    return line;
}

std::string ReadAll(std::FILE* file) {
    std::string text;
    char buffer[4096];
    while (const std::size_t size = std::fread(buffer, 1, sizeof buffer, file)) text.append(buffer, size);
    return text;
}

std::string Ending(int status) {
#if !defined(_WIN32)
    if (WIFSIGNALED(status)) return "the process ended by signal " + std::to_string(WTERMSIG(status));
    status = WEXITSTATUS(status);
#endif
    return "the process ended with exit code " + std::to_string(status);
}

}  // namespace

std::string RunIsolated(const std::string& program, const std::vector<std::string>& arguments) {
    std::fflush(nullptr);
    std::FILE* output = popen(CommandLine(program, arguments).c_str(), "r");
    if (output == nullptr) throw std::system_error(errno, std::generic_category(), program);
    std::string answer = ReadAll(output);
    const int status = pclose(output);
    if (!answer.ends_with('\n') || status != 0) return Ending(status);
    answer.pop_back();
    return answer;
}
