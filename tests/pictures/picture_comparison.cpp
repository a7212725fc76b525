#include "picture_comparison.h"

#include <algorithm>
#include <cstdlib>

namespace {

using DuiLib::CDuiSize;
using DuiLib::PaintSurface;

constexpr std::uint32_t kRed = 0xFFE00000;
constexpr int kShifts[] = {0, 8, 16, 24};

int Channel(std::uint32_t pixel, int shift) { return static_cast<int>((pixel >> shift) & 0xFF); }

// [levels] in the channel where the pixels are furthest apart.
int Distance(std::uint32_t one, std::uint32_t other) {
    if (one == other) return 0;
    int most = 0;
    for (const int shift : kShifts) most = std::max(most, std::abs(Channel(one, shift) - Channel(other, shift)));
    return most;
}

// A gray that leaves the picture to be seen and the red to stand out.
std::uint32_t Faint(std::uint32_t pixel) {
    const int gray = (Channel(pixel, 0) + Channel(pixel, 8) + Channel(pixel, 16)) / 3;
    const auto level = static_cast<std::uint32_t>(255 - (255 - gray) / 4);
    return 0xFF000000 | level << 16 | level << 8 | level;
}

bool Lies(CDuiSize size, int x, int y) { return x < size.cx && y < size.cy; }

std::int64_t Area(CDuiSize size) { return std::int64_t{size.cx} * size.cy; }

}  // namespace

std::string PictureDifference::Words() const {
    if (!sameSize) return "the sizes differ";
    return std::to_string(pixelsOff) + " pixels differ, by up to " + std::to_string(mostLevels) + " levels";
}

PictureDifference Compare(const PaintSurface& expected, const PaintSurface& actual) {
    PictureDifference difference;
    const CDuiSize size = expected.Size();
    if (size.cx != actual.Size().cx || size.cy != actual.Size().cy) {
        difference.sameSize = difference.equal = false;
        difference.pixelsOff = std::max(Area(size), Area(actual.Size()));
        return difference;
    }
    for (std::int64_t i = 0; i < Area(size); ++i) {
        const int distance = Distance(expected.Pixels()[i], actual.Pixels()[i]);
        difference.mostLevels = std::max(difference.mostLevels, distance);
        if (distance > kLevels) ++difference.pixelsOff;
    }
    difference.equal = difference.pixelsOff * 1'000'000 <= kPixelsOff * Area(size);
    return difference;
}

PaintSurface DrawDifference(const PaintSurface& expected, const PaintSurface& actual) {
    const CDuiSize one = expected.Size();
    const CDuiSize other = actual.Size();
    PaintSurface drawn({std::max(one.cx, other.cx), std::max(one.cy, other.cy)});
    std::uint32_t* pixel = drawn.Pixels();
    for (int y = 0; y < drawn.Size().cy; ++y) {
        for (int x = 0; x < drawn.Size().cx; ++x, ++pixel) {
            const bool inBoth = Lies(one, x, y) && Lies(other, x, y);
            const bool same = inBoth && Distance(expected.Pixel(x, y), actual.Pixel(x, y)) <= kLevels;
            *pixel = same ? Faint(expected.Pixel(x, y)) : kRed;
        }
    }
    return drawn;
}
