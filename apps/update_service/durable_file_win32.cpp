#include <windows.h>
#undef ReplaceFile  // the system has a macro of that name

#include <algorithm>
#include <system_error>

#include "base/path.h"
#include "base/reason.h"
#include "durable_file.h"

namespace update_service {
namespace {

// The system's texts in UTF-8, which std::system_category does not give.
class SystemErrors final : public std::error_category {
public:
    const char* name() const noexcept override { return "system"; }
    std::string message(int error) const override { return base::Reason(static_cast<unsigned long>(error)); }
    std::error_condition default_error_condition(int error) const noexcept override {
        return std::system_category().default_error_condition(error);
    }
};

[[noreturn]] void FailWith(const std::filesystem::path& path) {
    static const SystemErrors category;
    throw std::system_error(static_cast<int>(GetLastError()), category, base::Utf8FromPath(path));
}

// A virus scanner may hold a file for a moment that was closed just now.
constexpr int kTries = 40;
constexpr DWORD kBetweenTries = 50;  // [ms]

HANDLE HandleOf(std::intptr_t file) { return reinterpret_cast<HANDLE>(file); }

// Others may read it, rename it and remove it meanwhile. Writing, not appending alone: clearing needs it.
std::intptr_t Open(const std::filesystem::path& path) {
    const HANDLE handle =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) FailWith(path);
    return reinterpret_cast<std::intptr_t>(handle);
}

}  // namespace

AppendFile::AppendFile(const std::filesystem::path& path) : m_path(path), m_descriptor(Open(path)) {}

AppendFile::~AppendFile() { CloseHandle(HandleOf(m_descriptor)); }

std::uint64_t AppendFile::Size() const {
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(HandleOf(m_descriptor), &size)) Fail();
    return static_cast<std::uint64_t>(size.QuadPart);
}

void AppendFile::Clear() {
    if (!SetFilePointerEx(HandleOf(m_descriptor), {}, nullptr, FILE_BEGIN) || !SetEndOfFile(HandleOf(m_descriptor))) {
        Fail();
    }
}

void AppendFile::Append(const char* bytes, std::size_t size) {
    constexpr std::size_t kMost = std::size_t{1} << 30;  // [bytes] a write
    if (!SetFilePointerEx(HandleOf(m_descriptor), {}, nullptr, FILE_END)) Fail();
    while (size > 0) {
        DWORD written = 0;
        if (!WriteFile(HandleOf(m_descriptor), bytes, static_cast<DWORD>(std::min(size, kMost)), &written, nullptr)) {
            Fail();
        }
        bytes += written;
        size -= written;
    }
}

void AppendFile::Sync() {
    if (!FlushFileBuffers(HandleOf(m_descriptor))) Fail();
}

void AppendFile::Fail() const { FailWith(m_path); }

void RenameDurably(const std::filesystem::path& from, const std::filesystem::path& to) {
    constexpr DWORD kReplace = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    for (int tries = 0; !MoveFileExW(from.c_str(), to.c_str(), kReplace); ++tries) {
        const DWORD error = GetLastError();
        const bool isHeld = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        if (!isHeld || tries == kTries) FailWith(to);
        Sleep(kBetweenTries);
    }
}

void ReplaceFile(const std::filesystem::path& path, const std::string& content) {
    std::filesystem::path fresh = path;
    fresh += ".new";
    {
        AppendFile file(fresh);
        file.Clear();  // of what a crash may have left
        file.Append(content.data(), content.size());
        file.Sync();
    }
    RenameDurably(fresh, path);
}

}  // namespace update_service
