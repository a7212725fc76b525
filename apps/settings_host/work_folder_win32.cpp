#include <windows.h>

#include <cstdlib>
#include <stdexcept>

#include "base/path.h"
#include "base/reason.h"
#include "work_folder.h"

namespace settings_host {

// The folder of the user's temporary files is closed to other users.
std::filesystem::path MakeWorkFolder() {
    const std::filesystem::path all = std::filesystem::temp_directory_path();
    for (unsigned number = GetTickCount();; ++number) {
        const std::filesystem::path folder = all / (L"settings_host_" + std::to_wstring(number));
        if (CreateDirectoryW(folder.c_str(), nullptr)) return folder;
        if (GetLastError() == ERROR_ALREADY_EXISTS) continue;
        const std::string reason = base::LastReason();
        throw std::runtime_error(base::Utf8FromPath(folder) + ": cannot be made: " + reason);
    }
}

void SetVariable(const std::string& name, const std::filesystem::path& value) {
    _wputenv_s(base::PathFromUtf8(name).c_str(), value.c_str());
}

}  // namespace settings_host
