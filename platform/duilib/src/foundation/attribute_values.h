#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "duilib/geometry.h"

namespace DuiLib {

// Where something stands in a room that is larger than it.
enum class Alignment : std::uint8_t { kStart, kCenter, kEnd };

// The forms that attribute values have; none when the text is not of the form. Blanks around a number do not matter,
// numbers beyond kMaxExtent become that.
std::optional<int> ParseInt(std::wstring_view text);           // "-12"
std::optional<bool> ParseBool(std::wstring_view text);         // "true", "false"
std::optional<CDuiSize> ParseSize(std::wstring_view text);     // "28,28"
std::optional<CDuiRect> ParseRect(std::wstring_view text);     // "left,top,right,bottom"
std::optional<CDuiColor> ParseColor(std::wstring_view text);   // "#AARRGGBB", "AARRGGBB"
std::optional<Alignment> ParseAlignX(std::wstring_view text);  // "left", "center", "right"
std::optional<Alignment> ParseAlignY(std::wstring_view text);  // "top", "center", "bottom"

}  // namespace DuiLib
