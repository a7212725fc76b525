#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "base/handle.h"

namespace base {

// What the system itself does with files, one call each; base/file.h is made of these. Tests derive from it to see the
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

}  // namespace base
