#pragma once

#include <filesystem>

namespace DuiLib {

// The folder that the running program lies in; the current folder if the system does not tell.
std::filesystem::path ProgramFolder();

}  // namespace DuiLib
