#pragma once

#include <cstdint>
#include <span>

#include "duilib/geometry.h"

namespace DuiLib {

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
