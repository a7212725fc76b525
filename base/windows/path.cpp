#include "base/path.h"

#include <windows.h>

#include <stdexcept>
#include <system_error>

#include "base/reason.h"
#include "base/text.h"

namespace base {

std::string Utf8FromPath(const std::filesystem::path& path) { return Utf8FromWide(path.native()); }

std::filesystem::path PathFromUtf8(std::string_view text) { return WideFromUtf8(text); }

bool CapitalsCount() { return false; }

bool IsDeviceName(const std::string& name) {
    const std::string stem = name.substr(0, name.find('.'));
    if (stem == "con" || stem == "prn" || stem == "aux" || stem == "nul") return true;
    return stem.size() == 4 && (stem.starts_with("com") || stem.starts_with("lpt")) && stem[3] >= '0' && stem[3] <= '9';
}

// The whole path, however long.
std::filesystem::path ProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
        if (length < path.size()) return std::filesystem::path(path.substr(0, length)).parent_path();
        path.resize(path.size() * 2);
    }
}

// The folder of the user's temporary files is closed to other users.
std::filesystem::path MakeTemporaryFolder(const std::string& prefix) {
    const std::filesystem::path all = std::filesystem::temp_directory_path();
    for (unsigned number = GetTickCount();; ++number) {
        const std::filesystem::path folder = all / PathFromUtf8(prefix + "_" + std::to_string(number));
        if (CreateDirectoryW(folder.c_str(), nullptr)) return folder;
        if (GetLastError() == ERROR_ALREADY_EXISTS) continue;
        const std::string reason = LastReason();
        throw std::runtime_error(Utf8FromPath(folder) + ": cannot be made: " + reason);
    }
}

}  // namespace base
