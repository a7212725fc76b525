#include "support/toolkit/test_system.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <stdexcept>
#include <string>

namespace DuiLib {

std::filesystem::path FolderOfThisTest() { return std::filesystem::read_symlink("/proc/self/exe").parent_path(); }

std::filesystem::path MakeTemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "duilib-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    return pattern;
}

bool MakePipe(const std::filesystem::path& path) {
    if (::mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("no pipe");
    return true;
}

}  // namespace DuiLib
