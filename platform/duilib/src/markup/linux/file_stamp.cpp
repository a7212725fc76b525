#include "markup/file_stamp.h"

#include <sys/stat.h>
#include <time.h>

#include <algorithm>

namespace DuiLib {

namespace {

std::int64_t Nanoseconds(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

std::optional<FileStamp> StampOf(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return {};
    return FileStamp{Nanoseconds(status.st_mtim), Nanoseconds(status.st_ctim),
                     static_cast<std::uint64_t>(status.st_size), static_cast<std::uint64_t>(status.st_ino)};
}

bool IsSettled(const FileStamp& stamp) {
    constexpr std::int64_t kCoarsestClock_ns = 2'000'000'000;
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return Nanoseconds(now) - std::max(stamp.written_ns, stamp.changed_ns) > kCoarsestClock_ns;
}

}  // namespace DuiLib
