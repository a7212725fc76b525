#include <windows.h>

#include <cstdlib>
#include <stdexcept>

#include "app_system/path_text.h"
#include "app_system/reason_win32.h"
#include "work_folder.h"

namespace settings_host {

// The folder of the user's temporary files is closed to other users.
std::filesystem::path MakeWorkFolder() {
    const std::filesystem::path all = std::filesystem::temp_directory_path();
    for (unsigned number = GetTickCount();; ++number) {
        const std::filesystem::path folder = all / (L"settings_host_" + std::to_wstring(number));
        if (CreateDirectoryW(folder.c_str(), nullptr)) return folder;
        if (GetLastError() == ERROR_ALREADY_EXISTS) continue;
        const std::string reason = app_system::LastReason();
        throw std::runtime_error(app_system::Utf8(folder) + ": cannot be made: " + reason);
    }
}

void SetVariable(const std::string& name, const std::filesystem::path& value) {
    _wputenv_s(app_system::PathOf(name).c_str(), value.c_str());
}

}  // namespace settings_host
