#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "durable_file.h"

namespace update_service {
namespace {

[[noreturn]] void FailWith(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.string());
}

void SyncFolder(const std::filesystem::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) FailWith(folder);
    fsync(descriptor);  // a file system that cannot do it for folders has nothing to wait for
    close(descriptor);
}

}  // namespace

AppendFile::AppendFile(const std::filesystem::path& path)
    : m_path(path), m_descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644)) {
    if (m_descriptor < 0) Fail();
}

AppendFile::~AppendFile() { close(m_descriptor); }

std::uint64_t AppendFile::Size() const {
    struct stat status {};
    if (fstat(m_descriptor, &status) != 0) Fail();
    return static_cast<std::uint64_t>(status.st_size);
}

void AppendFile::Clear() {
    if (ftruncate(m_descriptor, 0) != 0) Fail();
}

void AppendFile::Append(const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(m_descriptor, bytes, size);
        if (written < 0) {
            if (errno == EINTR) continue;
            Fail();
        }
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

void AppendFile::Sync() {
    if (fsync(m_descriptor) != 0) Fail();
}

void AppendFile::Fail() const { FailWith(m_path); }

void RenameDurably(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::filesystem::rename(from, to);
    SyncFolder(to.parent_path());
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
