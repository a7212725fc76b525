#include "base/file.h"

#include <algorithm>
#include <chrono>

namespace base {
namespace {

// A file without a folder in its name lies in the current one.
std::filesystem::path FolderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

}  // namespace

FileSystem& TheFileSystem() {
    static FileSystem& system = *new FileSystem;  // files are written while the process ends, too
    return system;
}

AppendFile::AppendFile(const std::filesystem::path& path, FileSystem& system)
    : m_system(&system), m_path(path), m_file(system.OpenToAppend(path)) {}

std::uint64_t AppendFile::Size() const { return m_system->Size(m_file, m_path); }
void AppendFile::Clear() { m_system->Clear(m_file, m_path); }
void AppendFile::Sync() { m_system->Sync(m_file, m_path); }
void AppendFile::Close() { m_system->Close(m_file, m_path); }

void AppendFile::Append(std::string_view bytes) {
    while (!bytes.empty()) bytes.remove_prefix(m_system->Append(m_file, bytes.data(), bytes.size(), m_path));
}

void AppendText(const std::filesystem::path& file, std::string_view text, FileSystem& system) {
    AppendFile end(file, system);
    end.Append(text);
    end.Close();
}

void RenameDurably(const std::filesystem::path& from, const std::filesystem::path& to, FileSystem& system) {
    system.Rename(from, to);
    system.SyncFolder(FolderOf(to));
}

void ReplaceContent(const std::filesystem::path& file, std::string_view content, FileSystem& system) {
    std::filesystem::path fresh = file;
    fresh += ".new";
    AppendFile beside(fresh, system);
    beside.Clear();  // of what a crash may have left
    beside.Append(content);
    beside.Sync();
    beside.Close();
    RenameDurably(fresh, file, system);
}

bool IsSettled(const FileStamp& stamp) {
    using namespace std::chrono;
    constexpr nanoseconds kCoarsestClock = 2s;
    const nanoseconds changed(std::max(stamp.written_ns, stamp.changed_ns));
    return system_clock::now().time_since_epoch() - changed > kCoarsestClock;
}

}  // namespace base
