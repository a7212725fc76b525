#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

// Files that survive a killed process and a lost power supply. Everything here throws std::system_error, which names
// the file.
namespace update_service {

// A file that grows at its end.
class AppendFile {
public:
    // Opens the file, or makes it.
    explicit AppendFile(const std::filesystem::path& path);
    ~AppendFile();
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    std::uint64_t Size() const;  // [bytes]
    void Clear();
    void Append(const char* bytes, std::size_t size);
    void Sync();  // returns once everything is on the disk

private:
    [[noreturn]] void Fail() const;

    std::filesystem::path m_path;
#if defined(_WIN32)
    std::intptr_t m_descriptor;  // a handle
#else
    int m_descriptor;
#endif
};

// Renames the file, over an existing one too, and returns once that is on the disk.
void RenameDurably(const std::filesystem::path& from, const std::filesystem::path& to);

// Replaces the file's content: a reader, also one after a crash, sees the old content or the new one.
void ReplaceFile(const std::filesystem::path& path, const std::string& content);

}  // namespace update_service
