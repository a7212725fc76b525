#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>

namespace DuiLib {

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

}  // namespace DuiLib
