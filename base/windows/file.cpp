#include "base/file.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include "base/reason.h"
#include "base/text.h"

namespace base {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path) {
    const auto error = static_cast<int>(GetLastError());
    throw std::system_error(error, std::system_category(), Utf8FromPath(path));
}

// A virus scanner may hold a file for a moment that was closed just now.
constexpr int kTries = 40;
constexpr DWORD kBetweenTries = 50;  // [ms]

// Opens no content, and stands in nobody's way.
OwnedHandle Open(const std::filesystem::path& path) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return OwnedHandle(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                   FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::int64_t Nanoseconds(std::int64_t hundreds) {
    constexpr std::int64_t kHundredsUntil1970 = 116'444'736'000'000'000;
    return hundreds == 0 ? 0 : (hundreds - kHundredsUntil1970) * 100;
}

std::uint64_t Joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

}  // namespace

bool OwnedHandle::CloseValue(std::intptr_t value) noexcept {
    return CloseHandle(reinterpret_cast<HANDLE>(value)) != FALSE;
}

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

std::optional<FileStamp> StampOf(const std::filesystem::path& path) {
    const OwnedHandle file = Open(path);
    FILE_BASIC_INFO times{};
    BY_HANDLE_FILE_INFORMATION rest{};
    if (!file || !GetFileInformationByHandleEx(file.Handle(), FileBasicInfo, &times, sizeof times) ||
        !GetFileInformationByHandle(file.Handle(), &rest)) {
        return {};
    }
    return FileStamp{Nanoseconds(times.LastWriteTime.QuadPart), Nanoseconds(times.ChangeTime.QuadPart),
                     Joined(rest.nFileSizeHigh, rest.nFileSizeLow), Joined(rest.nFileIndexHigh, rest.nFileIndexLow)};
}

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
