#include "base/file_system.h"

#include <windows.h>

#include <algorithm>
#include <system_error>

#include "base/path.h"

namespace base {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path) {
    const auto error = static_cast<int>(GetLastError());
    throw std::system_error(error, std::system_category(), Utf8FromPath(path));
}

// A virus scanner may hold a file for a moment that was closed just now.
constexpr int kTries = 40;
constexpr DWORD kBetweenTries = 50;  // [ms]

}  // namespace

// Not for appending only: clearing needs the right to write.
OwnedHandle FileSystem::OpenToAppend(const std::filesystem::path& path) {
    OwnedHandle file(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) Fail(path);
    return file;
}

std::uint64_t FileSystem::Size(const OwnedHandle& file, const std::filesystem::path& path) {
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.Handle(), &size)) Fail(path);
    return static_cast<std::uint64_t>(size.QuadPart);
}

void FileSystem::Clear(const OwnedHandle& file, const std::filesystem::path& path) {
    if (!SetFilePointerEx(file.Handle(), {}, nullptr, FILE_BEGIN) || !SetEndOfFile(file.Handle())) Fail(path);
}

// This place means the file's end, whoever else writes to it.
std::size_t FileSystem::Append(const OwnedHandle& file, const char* bytes, std::size_t size,
                               const std::filesystem::path& path) {
    constexpr std::size_t kMost = std::size_t{1} << 30;  // [bytes] a write
    OVERLAPPED end{};
    end.Offset = end.OffsetHigh = 0xFFFFFFFF;
    DWORD written = 0;
    if (!WriteFile(file.Handle(), bytes, static_cast<DWORD>(std::min(size, kMost)), &written, &end)) Fail(path);
    return written;
}

void FileSystem::Sync(const OwnedHandle& file, const std::filesystem::path& path) {
    if (!FlushFileBuffers(file.Handle())) Fail(path);
}

void FileSystem::Close(OwnedHandle& file, const std::filesystem::path& path) {
    if (!file.Close()) Fail(path);
}

void FileSystem::Rename(const std::filesystem::path& from, const std::filesystem::path& path) {
    constexpr DWORD kReplace = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    for (int tries = 0; !MoveFileExW(from.c_str(), path.c_str(), kReplace); ++tries) {
        const DWORD error = GetLastError();
        const bool isHeld = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        if (!isHeld || tries == kTries) Fail(path);
        Sleep(kBetweenTries);
    }
}

// Renaming writes through.
void FileSystem::SyncFolder(const std::filesystem::path&) {}

}  // namespace base
