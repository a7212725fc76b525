#include "drawing/windows/pixel_blending.h"

#include <algorithm>

namespace DuiLib {

namespace {

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

}  // namespace DuiLib
