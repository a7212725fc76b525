#include "base/path.h"

#include <windows.h>

#include <system_error>

#include "base/text.h"

namespace base {

std::string Utf8FromPath(const std::filesystem::path& path) { return Utf8FromWide(path.native()); }

std::filesystem::path PathFromUtf8(std::string_view text) { return WideFromUtf8(text); }

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

}  // namespace base
