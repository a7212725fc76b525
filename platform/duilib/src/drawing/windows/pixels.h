#pragma once

#include <cstdint>
#include <span>

#include "duilib/geometry.h"

namespace DuiLib {

// Arithmetic of pixels 0xAARRGGBB. "Multiplied" ones have their colours multiplied by the alpha.

// Every part of a multiplied pixel times `share` / 255, rounded.
std::uint32_t Weakened(std::uint32_t pixel, unsigned share);

// What `below` looks like under `above`, both multiplied.
std::uint32_t Over(std::uint32_t above, std::uint32_t below);

std::uint32_t Multiplied(std::uint32_t plain);
std::uint32_t Divided(std::uint32_t multiplied);

// A rectangle whose corners are quarters of an ellipse [device px], as what it covers of each pixel.
class RoundShape {
public:
    RoundShape(const CDuiRect& area, CDuiSize corner);

    // For the row `y`, from the column `left` on: 0 where nothing of the pixel is covered, 255 where all is.
    void CoverRow(int y, int left, std::span<std::uint8_t> row) const;

private:
    double Inset(double y) const;  // of the left and right edge at a height

    CDuiRect m_area;
    double m_radiusX;
    double m_radiusY;
};

}  // namespace DuiLib
