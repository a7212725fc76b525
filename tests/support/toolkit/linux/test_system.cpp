#include "support/toolkit/test_system.h"

#include <sys/stat.h>

#include <stdexcept>

namespace DuiLib {

std::filesystem::path FolderOfThisTest() { return std::filesystem::read_symlink("/proc/self/exe").parent_path(); }

bool MakePipe(const std::filesystem::path& path) {
    if (::mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("no pipe");
    return true;
}

}  // namespace DuiLib
