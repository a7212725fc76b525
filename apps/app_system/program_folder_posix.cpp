#include "program_folder.h"

namespace app_system {

std::filesystem::path ProgramFolder() { return std::filesystem::read_symlink("/proc/self/exe").parent_path(); }

}  // namespace app_system
