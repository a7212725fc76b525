#include "base/path.h"

#include <cstdlib>
#include <stdexcept>

#include "base/reason.h"

namespace base {

std::string Utf8FromPath(const std::filesystem::path& path) { return path.native(); }

std::filesystem::path PathFromUtf8(std::string_view text) { return text; }

bool CapitalsCount() { return true; }

bool IsDeviceName(const std::string&) { return false; }

std::filesystem::path ProgramFolder() { return std::filesystem::read_symlink("/proc/self/exe").parent_path(); }

std::filesystem::path MakeTemporaryFolder(const std::string& prefix) {
    std::string name = std::filesystem::temp_directory_path() / (prefix + "_XXXXXX");
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error(name + ": cannot be made: " + LastReason());
    return name;
}

}  // namespace base
