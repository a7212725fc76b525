#pragma once

#include <string>
#include <vector>

namespace base {

// Program and arguments in the one line that Windows takes, quoted so that the program's own runtime takes them apart
// again. What begins with "cmd.exe", "/d", "/s", "/c" and a text ends there: the command interpreter takes the text as
// it stands, and can be given no arguments beside it.
std::string WindowsCommandLine(const std::vector<std::string>& command);

}  // namespace base
