#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "base/file_system.h"
#include "base/handle.h"

// Files that survive a killed process and a lost power supply. Everything here throws std::system_error, which names
// the file; base::Reason tells it in UTF-8. Any thread, but one AppendFile is used by one at a time.
namespace base {

// A file that grows at its end, whoever else appends to it.
class AppendFile {
public:
    // Opens the file, or makes it.
    explicit AppendFile(const std::filesystem::path& path, FileSystem& system = TheFileSystem());

    std::uint64_t Size() const;  // [bytes]
    void Clear();
    void Append(std::string_view bytes);
    void Sync();  // returns once everything is on the disk
    void Close();

private:
    FileSystem* m_system;
    std::filesystem::path m_path;
    OwnedHandle m_file;
};

// Appends the text in one piece, so that lines of several threads and processes stay whole; makes the file when it is
// missing. It may reach the disk later.
void AppendText(const std::filesystem::path& file, std::string_view text, FileSystem& system = TheFileSystem());

// Renames the file, over an existing one too, and returns once that is on the disk.
void RenameDurably(const std::filesystem::path& from, const std::filesystem::path& to,
                   FileSystem& system = TheFileSystem());

// Replaces the file's content: a reader, also one after a crash, sees the whole old content or the whole new one. The
// new content is written beside it first, under the name with ".new" behind it.
void ReplaceContent(const std::filesystem::path& file, std::string_view content, FileSystem& system = TheFileSystem());

}  // namespace base
