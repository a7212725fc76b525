#pragma once

#include <string>
#include <string_view>

namespace DuiLib {

// Invalid bytes and unpaired surrogates become U+FFFD.
std::wstring FromUtf8(std::string_view text);
std::string ToUtf8(std::wstring_view text);

}  // namespace DuiLib
