#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// Paths and texts that a user reads or writes. Texts are UTF-8 on every system.
namespace app_system {

inline std::string Utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

inline std::filesystem::path PathOf(std::string_view utf8) { return std::u8string(utf8.begin(), utf8.end()); }

}  // namespace app_system
