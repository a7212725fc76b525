#pragma once

#include <filesystem>

namespace app_system {

// The folder that the running program lies in. Throws std::system_error when the system does not tell.
std::filesystem::path ProgramFolder();

}  // namespace app_system
