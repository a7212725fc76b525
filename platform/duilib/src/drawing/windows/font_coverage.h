#pragma once

#include <string>
#include <string_view>

namespace DuiLib {

// Whether a family has all letters of the text; characters beyond the basic plane are not looked at. Each family is
// read once. UI turn.
bool HasLetters(const std::wstring& family, std::wstring_view text);

}  // namespace DuiLib
