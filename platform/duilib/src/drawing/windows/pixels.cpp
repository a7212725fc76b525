#include "drawing/windows/pixels.h"

#include <algorithm>
#include <cmath>

namespace DuiLib {

namespace {

constexpr int kLines = 16;  // that a row is cut into; along each, lengths are exact

// a * b / 255, rounded to the nearest.
constexpr unsigned Product(unsigned a, unsigned b) {
    const unsigned sum = a * b + 128;
    return (sum + (sum >> 8)) >> 8;
}

template <class Change>
constexpr std::uint32_t ChangedParts(std::uint32_t pixel, Change change) {
    return change(pixel >> 24) << 24 | change(pixel >> 16 & 0xFF) << 16 | change(pixel >> 8 & 0xFF) << 8 |
           change(pixel & 0xFF);
}

}  // namespace

std::uint32_t Weakened(std::uint32_t pixel, unsigned share) {
    return ChangedParts(pixel, [share](unsigned part) { return Product(part, share); });
}

std::uint32_t Over(std::uint32_t above, std::uint32_t below) {
    const unsigned alpha = above >> 24;
    if (alpha == 255) return above;
    const std::uint32_t rest = Weakened(below, 255 - alpha);
    std::uint32_t sum = 0;
    for (const int shift : {24, 16, 8, 0}) {
        sum |= std::min<std::uint32_t>(255, (above >> shift & 0xFF) + (rest >> shift & 0xFF)) << shift;
    }
    return sum;
}

std::uint32_t Multiplied(std::uint32_t plain) { return Weakened(plain | 0xFF000000, plain >> 24); }

std::uint32_t Divided(std::uint32_t multiplied) {
    const unsigned alpha = multiplied >> 24;
    if (alpha == 0) return 0;
    const auto divide = [alpha](unsigned part) { return std::min(255u, (part * 255 + alpha / 2) / alpha); };
    return alpha << 24 | (ChangedParts(multiplied, divide) & 0xFFFFFF);
}

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
