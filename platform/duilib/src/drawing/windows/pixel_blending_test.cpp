#include "drawing/windows/pixel_blending.h"

#include <gtest/gtest.h>

namespace DuiLib {
namespace {

TEST(PixelBlending, AnOpaquePixelHidesAndATransparentOneShowsWhatIsBelow) {
    EXPECT_EQ(Over(0xFF123456, 0xFFABCDEF), 0xFF123456u);
    EXPECT_EQ(Over(0, 0xFFABCDEF), 0xFFABCDEFu);
    EXPECT_EQ(Over(Multiplied(0x80000000), 0xFFFFFFFF), 0xFF7F7F7Fu);
}

TEST(PixelBlending, AFullShareChangesNothingAndNoShareLeavesNothing) {
    EXPECT_EQ(Weakened(0x80402000, 255), 0x80402000u);
    EXPECT_EQ(Weakened(0x80402000, 0), 0u);
}

// What is saved and read again must not drift.
TEST(PixelBlending, EveryMultipliedPixelComesBackFromItsPlainOne) {
    for (unsigned alpha = 0; alpha < 256; ++alpha) {
        for (unsigned part = 0; part <= alpha; ++part) {
            const std::uint32_t pixel = alpha << 24 | part << 16 | (alpha - part) << 8 | alpha;
            ASSERT_EQ(Multiplied(Divided(pixel)), pixel) << std::hex << pixel;
        }
    }
}

}  // namespace
}  // namespace DuiLib
