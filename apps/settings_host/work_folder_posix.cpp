#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include "work_folder.h"

namespace settings_host {

std::filesystem::path MakeWorkFolder() {
    std::string name = std::filesystem::temp_directory_path() / "settings_host_XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error(name + ": cannot be made: " + std::generic_category().message(errno));
    }
    return name;
}

void SetVariable(const std::string& name, const std::filesystem::path& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

}  // namespace settings_host
