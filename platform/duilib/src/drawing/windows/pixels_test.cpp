#include "drawing/windows/pixels.h"

#include <cmath>
#include <numbers>
#include <numeric>

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {
namespace {

using testing::Each;
using testing::ElementsAre;

std::vector<std::uint8_t> Row(const RoundShape& shape, int y, int left, std::size_t width) {
    std::vector<std::uint8_t> row(width, 77);
    shape.CoverRow(y, left, row);
    return row;
}

TEST(RoundShape, WithoutCornersItCoversItsPixelsAndNoOthers) {
    const RoundShape shape({1, 1, 3, 3}, {});
    EXPECT_THAT(Row(shape, 0, 0, 4), Each(0));
    EXPECT_THAT(Row(shape, 1, 0, 4), ElementsAre(0, 255, 255, 0));
    EXPECT_THAT(Row(shape, 2, 0, 4), ElementsAre(0, 255, 255, 0));
    EXPECT_THAT(Row(shape, 3, 0, 4), Each(0));
}

TEST(RoundShape, ACircleCoversItsAreaAndIsTheSameFromAllSides) {
    constexpr int kSide = 28;
    const RoundShape circle({0, 0, kSide, kSide}, {kSide, kSide});
    double area = 0;
    for (int y = 0; y < kSide; ++y) {
        std::vector<std::uint8_t> row = Row(circle, y, 0, kSide);
        EXPECT_EQ(row, Row(circle, kSide - 1 - y, 0, kSide));
        area += std::accumulate(row.begin(), row.end(), 0.0) / 255;
        std::ranges::reverse(row);
        EXPECT_EQ(row, Row(circle, y, 0, kSide));
    }
    EXPECT_NEAR(area, std::numbers::pi * kSide * kSide / 4, 1);
    EXPECT_EQ(Row(circle, 0, 0, kSide)[0], 0);
    EXPECT_EQ(Row(circle, kSide / 2, 0, kSide)[kSide / 2], 255);
}

TEST(RoundShape, APartOfARowIsWhatTheWholeRowHasThere) {
    const RoundShape shape({-5, -5, 40, 20}, {12, 9});
    for (int y = -6; y < 21; ++y) {
        const std::vector<std::uint8_t> whole = Row(shape, y, -8, 60);
        for (int left = -8; left < 50; ++left) {
            EXPECT_EQ(Row(shape, y, left, 2)[1], whole[static_cast<std::size_t>(left + 9)]) << left << "," << y;
        }
    }
}

TEST(Pixels, AnOpaquePixelHidesAndATransparentOneShowsWhatIsBelow) {
    EXPECT_EQ(Over(0xFF123456, 0xFFABCDEF), 0xFF123456u);
    EXPECT_EQ(Over(0, 0xFFABCDEF), 0xFFABCDEFu);
    EXPECT_EQ(Over(Multiplied(0x80000000), 0xFFFFFFFF), 0xFF7F7F7Fu);
}

TEST(Pixels, AFullShareChangesNothingAndNoShareLeavesNothing) {
    EXPECT_EQ(Weakened(0x80402000, 255), 0x80402000u);
    EXPECT_EQ(Weakened(0x80402000, 0), 0u);
}

// What is saved and read again must not drift.
TEST(Pixels, EveryMultipliedPixelComesBackFromItsPlainOne) {
    for (unsigned alpha = 0; alpha < 256; ++alpha) {
        for (unsigned part = 0; part <= alpha; ++part) {
            const std::uint32_t pixel = alpha << 24 | part << 16 | (alpha - part) << 8 | alpha;
            ASSERT_EQ(Multiplied(Divided(pixel)), pixel) << std::hex << pixel;
        }
    }
}

}  // namespace
}  // namespace DuiLib
