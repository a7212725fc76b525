#include "window/display_scale.h"

#include <gtest/gtest.h>

namespace DuiLib {
namespace {

TEST(DisplayScale, TheNearestStepOfTwentyFivePercentIsTaken) {
    struct Case {
        double density;
        unsigned scale;
    };
    for (const Case& c : {Case{96, 100}, Case{107, 100}, Case{109, 125}, Case{120, 125}, Case{144, 150}, Case{163, 175},
                          Case{192, 200}, Case{288, 300}}) {
        EXPECT_EQ(ScaleForDensity(c.density), c.scale) << c.density;
    }
}

TEST(DisplayScale, ItStaysBetweenOneAndThreeHundredPercent) {
    EXPECT_EQ(ScaleForDensity(0), 100u);
    EXPECT_EQ(ScaleForDensity(40), 100u);
    EXPECT_EQ(ScaleForDensity(1000), 300u);
}

}  // namespace
}  // namespace DuiLib
