#include "base/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include "base/reason.h"

namespace base {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.native());
}

std::int64_t Nanoseconds(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

bool OwnedHandle::CloseValue(std::intptr_t value) noexcept { return close(static_cast<int>(value)) == 0; }

OwnedHandle FileSystem::OpenToAppend(const std::filesystem::path& path) {
    OwnedHandle file(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
    if (!file) Fail(path);
    return file;
}

std::uint64_t FileSystem::Size(const OwnedHandle& file, const std::filesystem::path& path) {
    struct stat status {};
    if (fstat(file.Descriptor(), &status) != 0) Fail(path);
    return static_cast<std::uint64_t>(status.st_size);
}

void FileSystem::Clear(const OwnedHandle& file, const std::filesystem::path& path) {
    if (ftruncate(file.Descriptor(), 0) != 0) Fail(path);
}

std::size_t FileSystem::Append(const OwnedHandle& file, const char* bytes, std::size_t size,
                               const std::filesystem::path& path) {
    ssize_t written = -1;
    do {
        written = write(file.Descriptor(), bytes, size);
    } while (written < 0 && errno == EINTR);
    if (written < 0) Fail(path);
    return static_cast<std::size_t>(written);
}

void FileSystem::Sync(const OwnedHandle& file, const std::filesystem::path& path) {
    if (fsync(file.Descriptor()) != 0) Fail(path);
}

void FileSystem::Close(OwnedHandle& file, const std::filesystem::path& path) {
    if (!file.Close()) Fail(path);
}

void FileSystem::Rename(const std::filesystem::path& from, const std::filesystem::path& path) {
    std::filesystem::rename(from, path);
}

void FileSystem::SyncFolder(const std::filesystem::path& path) {
    const OwnedHandle folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) Fail(path);
    fsync(folder.Descriptor());  // a file system that cannot do it for folders has nothing to wait for
}

std::optional<FileStamp> StampOf(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return {};
    return FileStamp{Nanoseconds(status.st_mtim), Nanoseconds(status.st_ctim),
                     static_cast<std::uint64_t>(status.st_size), static_cast<std::uint64_t>(status.st_ino)};
}

std::string Utf8FromPath(const std::filesystem::path& path) { return path.native(); }

std::filesystem::path PathFromUtf8(std::string_view text) { return text; }

bool CapitalsCount() { return true; }

bool IsDeviceName(const std::string&) { return false; }

std::filesystem::path ProgramFolder() { return std::filesystem::read_symlink("/proc/self/exe").parent_path(); }

std::filesystem::path MakeTemporaryFolder(const std::string& prefix) {
    std::string name = std::filesystem::temp_directory_path() / (prefix + "_XXXXXX");
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error(name + ": cannot be made: " + LastReason());
    return name;
}

}  // namespace base
