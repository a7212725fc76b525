#pragma once

#include <cstdint>

#include "duilib/geometry.h"

namespace DuiLib {

// Arithmetic of pixels 0xAARRGGBB. "Multiplied" ones have their colours multiplied by the alpha.

// Every part of a multiplied pixel times `share` / 255, rounded.
std::uint32_t Weakened(std::uint32_t pixel, unsigned share);

// What `below` looks like under `above`, both multiplied.
std::uint32_t Over(std::uint32_t above, std::uint32_t below);

std::uint32_t Multiplied(std::uint32_t plain);
std::uint32_t Divided(std::uint32_t multiplied);

}  // namespace DuiLib
