#pragma once

#include <filesystem>
#include <string>

namespace settings_host {

// Makes a new, empty folder for this user alone among the system's temporary files. Throws std::runtime_error, naming
// the folder and the reason.
std::filesystem::path MakeWorkFolder();

// Sets a variable of the environment, for this process and the programs that it starts. While there is one thread.
void SetVariable(const std::string& name, const std::filesystem::path& value);

}  // namespace settings_host
