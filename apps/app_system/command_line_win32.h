#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

// What the system takes in one text where others take lists. Texts that come in are UTF-8.
namespace app_system {

// Program and arguments in one line, quoted so that the program's own runtime takes them apart again. What
// begins with "cmd.exe", "/d", "/s", "/c" and a text ends there: the command interpreter takes the text as it stands,
// and can be given no arguments beside it.
std::wstring CommandLineOf(const std::vector<std::string>& command);

// A program with a slash or backslash in its name, looked up from `folder`; empty for one that the system looks up.
std::wstring ProgramPath(const std::string& program, const std::filesystem::path& folder);

// This process's environment with the variables added or replaced, in the system's form: sorted, a zero behind each
// and one more at the end.
std::wstring EnvironmentWith(const std::vector<std::pair<std::string, std::string>>& variables);

}  // namespace app_system
