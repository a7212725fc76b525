#include "markup/file_stamp.h"

#include <windows.h>

#include <algorithm>

#include "base/handle.h"

namespace DuiLib {

namespace {

// Opens no content, and stands in nobody's way.
base::OwnedHandle Open(const std::filesystem::path& path) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return base::OwnedHandle(::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                           FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::int64_t Nanoseconds(std::int64_t hundreds) {
    constexpr std::int64_t kHundredsUntil1970 = 116'444'736'000'000'000;
    return hundreds == 0 ? 0 : (hundreds - kHundredsUntil1970) * 100;
}

std::uint64_t Joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

}  // namespace

std::optional<FileStamp> StampOf(const std::filesystem::path& path) {
    const base::OwnedHandle file = Open(path);
    FILE_BASIC_INFO times{};
    BY_HANDLE_FILE_INFORMATION rest{};
    if (!file || !::GetFileInformationByHandleEx(file.Handle(), FileBasicInfo, &times, sizeof times) ||
        !::GetFileInformationByHandle(file.Handle(), &rest)) {
        return {};
    }
    return FileStamp{Nanoseconds(times.LastWriteTime.QuadPart), Nanoseconds(times.ChangeTime.QuadPart),
                     Joined(rest.nFileSizeHigh, rest.nFileSizeLow), Joined(rest.nFileIndexHigh, rest.nFileIndexLow)};
}

bool IsSettled(const FileStamp& stamp) {
    constexpr std::int64_t kCoarsestClock_ns = 2'000'000'000;
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    const std::int64_t now_ns = Nanoseconds(static_cast<std::int64_t>(Joined(now.dwHighDateTime, now.dwLowDateTime)));
    return now_ns - std::max(stamp.written_ns, stamp.changed_ns) > kCoarsestClock_ns;
}

}  // namespace DuiLib
