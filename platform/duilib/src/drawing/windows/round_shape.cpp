#include "drawing/windows/round_shape.h"

#include <algorithm>
#include <cmath>

namespace DuiLib {

namespace {

constexpr int kLines = 16;  // that a row is cut into; along each, lengths are exact

}  // namespace

RoundShape::RoundShape(const CDuiRect& area, CDuiSize corner)
    : m_area(area),
      m_radiusX(std::min<double>(corner.cx, area.Width() / 2.0)),
      m_radiusY(std::min<double>(corner.cy, area.Height() / 2.0)) {
    if (m_radiusX <= 0 || m_radiusY <= 0) m_radiusX = m_radiusY = 0;
}

double RoundShape::Inset(double y) const {
    const double fromEdge = std::min(y - m_area.top, m_area.bottom - y);
    if (fromEdge >= m_radiusY) return 0;
    const double fromMiddle = (m_radiusY - fromEdge) / m_radiusY;
    return m_radiusX * (1 - std::sqrt(std::max(0.0, 1 - fromMiddle * fromMiddle)));
}

void RoundShape::CoverRow(int y, int left, std::span<std::uint8_t> row) const {
    std::ranges::fill(row, std::uint8_t{0});
    if (y < m_area.top || y >= m_area.bottom) return;
    double insets[kLines];
    for (int i = 0; i < kLines; ++i) insets[i] = Inset(y + (i + 0.5) / kLines);
    const int reach = static_cast<int>(std::ceil(*std::ranges::max_element(insets)));
    const auto column = [&](int x) { return std::clamp<int>(x - left, 0, static_cast<int>(row.size())); };
    const auto cover = [&](int from, int to) {
        for (int i = column(from); i < column(to); ++i) {
            double covered = 0;
            for (const double inset : insets) {
                const double start = std::max<double>(left + i, m_area.left + inset);
                const double end = std::min<double>(left + i + 1, m_area.right - inset);
                covered += std::max(0.0, end - start);
            }
            row[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(std::lround(covered / kLines * 255));
        }
    };
    const int innerLeft = std::min(m_area.left + reach, m_area.right);
    const int innerRight = std::max(innerLeft, m_area.right - reach);
    cover(m_area.left, innerLeft);
    std::fill(row.begin() + column(innerLeft), row.begin() + column(innerRight), std::uint8_t{255});
    cover(innerRight, m_area.right);
}

}  // namespace DuiLib
