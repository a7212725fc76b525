#include "base/command_line.h"

namespace base {

namespace {

// A quotation mark is written with a backslash before it, and backslashes before one are doubled.
std::string Quoted(const std::string& word) {
    if (!word.empty() && word.find_first_of(" \t\n\v\"") == word.npos) return word;
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char c : word) {
        if (c == '"') quoted.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    quoted.append(backslashes, '\\');
    return quoted + '"';
}

bool IsInterpretersText(const std::vector<std::string>& command, std::size_t index) {
    return index == 4 && command[0] == "cmd.exe" && command[2] == "/s" && command[3] == "/c";
}

}  // namespace

std::string WindowsCommandLine(const std::vector<std::string>& command) {
    std::string line;
    for (std::size_t i = 0; i < command.size(); ++i) {
        if (i != 0) line += ' ';
        if (IsInterpretersText(command, i)) return line + '"' + command[i] + '"';
        line += Quoted(command[i]);
    }
    return line;
}

}  // namespace base
