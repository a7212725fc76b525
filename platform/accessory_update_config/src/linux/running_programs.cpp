#include "running_programs.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kCommLength = 15;  // the kernel cuts /proc/PID/comm there

std::string ReadAll(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::string_view FileName(std::string_view path) { return path.substr(path.rfind('/') + 1); }

// Empty for a process of somebody else, and for one that has ended.
std::string ExecutableName(const fs::path& process) {
    std::error_code error;
    std::string name = fs::read_symlink(process / "exe", error).filename().native();
    constexpr std::string_view kDeleted = " (deleted)";
    if (name.ends_with(kDeleted)) name.resize(name.size() - kDeleted.size());
    return name;
}

std::vector<std::string> Arguments(const fs::path& process) {
    const std::string text = ReadAll(process / "cmdline");
    std::vector<std::string> arguments;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\0', begin), text.size());
        arguments.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return arguments;
}

// A script's process is its interpreter, with the script as its first or, behind an option, second argument. The
// process's short name tells a script that runs from one that is merely named, as in "vi pen_studio".
bool RunsScript(const fs::path& process, const std::vector<std::string>& arguments, std::string_view fileName) {
    std::string comm = ReadAll(process / "comm");
    if (!comm.empty() && comm.back() == '\n') comm.pop_back();
    if (comm != fileName.substr(0, kCommLength)) return false;
    const auto isScript = [&](const std::string& argument) { return FileName(argument) == fileName; };
    const auto last = arguments.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(arguments.size(), 3));
    return std::any_of(arguments.begin(), last, isScript);
}

bool Runs(const fs::path& process, std::string_view fileName) {
    if (ExecutableName(process) == fileName) return true;
    const std::vector<std::string> arguments = Arguments(process);
    if (arguments.empty()) return false;  // ended, or a thread of the kernel
    return FileName(arguments[0]) == fileName || RunsScript(process, arguments, fileName);
}

bool IsProcessFolder(const fs::path& path) {
    const std::string name = path.filename().native();
    return std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

}  // namespace

bool IsProgramRunning(const std::string& fileName) {
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end; entry.increment(error)) {
        if (IsProcessFolder(entry->path()) && Runs(entry->path(), fileName)) return true;
    }
    return false;
}
