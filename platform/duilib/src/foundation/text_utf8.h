#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace DuiLib {

// Invalid bytes and unpaired surrogates become U+FFFD.
std::wstring FromUtf8(std::string_view text);
std::string ToUtf8(std::wstring_view text);

// A path for a person to read.
inline std::string PathText(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

}  // namespace DuiLib
