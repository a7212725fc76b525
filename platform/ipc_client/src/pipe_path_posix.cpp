#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "kernel/code_pages.h"
#include "pipe_path.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;

std::string ToUtf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const auto convert = [&](char* destination, int capacity) {
        return kernel::WideCharToMultiByte(kernel::kCodePageUtf8, 0, text.data(), length, destination, capacity,
                                           nullptr, nullptr);
    };
    std::string bytes(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
}

// The system takes the prefix in any case.
bool HasPipePrefix(const std::wstring& name, std::wstring_view prefix) {
    const auto lower = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c; };
    return name.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), name.begin(),
                                                      [&](wchar_t a, wchar_t b) { return lower(a) == lower(b); });
}

std::string FileName(std::wstring name) {
    constexpr std::wstring_view kPrefix = L"\\\\.\\Pipe\\";
    if (HasPipePrefix(name, kPrefix)) name.erase(0, kPrefix.size());
    std::replace_if(
        name.begin(), name.end(), [](wchar_t c) { return c == L'/' || c == L'\\' || (c >= 0 && c < 32); }, L'_');
    return ToUtf8(name) + ".sock";
}

bool IsFolderOfThisUser(const char* path) {
    struct stat info;
    return path[0] == '/' && stat(path, &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == geteuid();
}

fs::path PipeFolder() {
    if (const char* chosen = std::getenv("BRINDLE_PIPE_DIR"); chosen != nullptr && chosen[0] != '\0') return chosen;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && IsFolderOfThisUser(runtime)) return fs::path(runtime) / "brindle";
    return "/tmp/brindle-" + std::to_string(geteuid());
}

[[noreturn]] void Refuse(const fs::path& folder, const std::string& reason) {
    throw std::runtime_error("pipe folder " + folder.string() + ": " + reason);
}

}  // namespace

fs::path PipePath(const std::wstring& pipeName) { return PipeFolder() / FileName(pipeName); }

void PreparePipeFolder(const fs::path& folder) {
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) Refuse(folder, std::generic_category().message(errno));
    struct stat info;
    if (lstat(folder.c_str(), &info) != 0) Refuse(folder, std::generic_category().message(errno));
    if (!S_ISDIR(info.st_mode)) Refuse(folder, "not a folder");
    if (info.st_uid != geteuid()) Refuse(folder, "belongs to another user");
    if ((info.st_mode & 077) != 0) Refuse(folder, "is open to other users (mode 0700 is needed)");
}

}  // namespace ipc_client
