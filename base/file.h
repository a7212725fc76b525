#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/handle.h"

// Paths and files. Any thread, but one AppendFile is used by one at a time.
namespace base {

// ---- Paths as texts that a person reads or writes, which are UTF-8 on every system, as path::string() is not

// With the system's own separators. Bytes of a Linux path that are not UTF-8 stay as they are.
std::string Utf8FromPath(const std::filesystem::path& path);

std::filesystem::path PathFromUtf8(std::string_view text);

// Whether files whose names differ in capitals only are different files.
bool CapitalsCount();

// Whether the name, in small letters, is a device's in every folder, whatever follows a dot.
bool IsDeviceName(const std::string& name);

// The folder that the running program lies in. Throws std::system_error when the system does not tell.
std::filesystem::path ProgramFolder();

// Makes a new, empty folder for this user only among the system's temporary files; its name begins with `prefix`.
// Throws std::runtime_error, naming the folder and the reason.
std::filesystem::path MakeTemporaryFolder(const std::string& prefix);

// ---- Files that survive a killed process and a lost power supply. What fails throws std::system_error, which names
// the file; base::Reason tells it in UTF-8.

// What the system itself does with files, one call each; the rest is made of these. Tests derive from it to see the
// calls, or to fail them. Failures throw std::system_error, which names `path`.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    // Makes the file when it is missing. Others may read, rename and remove it meanwhile.
    virtual OwnedHandle OpenToAppend(const std::filesystem::path& path);
    virtual std::uint64_t Size(const OwnedHandle& file, const std::filesystem::path& path);  // [bytes]
    virtual void Clear(const OwnedHandle& file, const std::filesystem::path& path);
    // Puts bytes at the file's end and returns how many, at least one of a text that is not empty.
    virtual std::size_t Append(const OwnedHandle& file, const char* bytes, std::size_t size,
                               const std::filesystem::path& path);
    virtual void Sync(const OwnedHandle& file, const std::filesystem::path& path);
    virtual void Close(OwnedHandle& file, const std::filesystem::path& path);
    // Over an existing file too, also one that another program holds for a moment.
    virtual void Rename(const std::filesystem::path& from, const std::filesystem::path& path);
    // Returns once names that were given in the folder are on the disk. Not every system needs it.
    virtual void SyncFolder(const std::filesystem::path& path);
};

// The one that asks the system.
FileSystem& TheFileSystem();

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

// What tells one content of a file from another without reading it.
struct FileStamp {
    std::int64_t written_ns = 0;
    std::int64_t changed_ns = 0;  // moves with every change, also with one that sets `written_ns` back
    std::uint64_t size = 0;
    std::uint64_t identity = 0;  // of the file behind the name

    bool operator==(const FileStamp&) const = default;
};

std::optional<FileStamp> StampOf(const std::filesystem::path& path);  // none when there is no such file

// Whether the last change lies far enough back for a later one to show in the stamp.
bool IsSettled(const FileStamp& stamp);

}  // namespace base
