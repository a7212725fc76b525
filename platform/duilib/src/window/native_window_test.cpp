#include "window/native_window.h"

#include <gtest/gtest.h>

namespace DuiLib {
namespace {

using std::chrono::milliseconds;

TEST(WindowWait, ItEndsAtTheLimitOrTheNextTickWhicheverComesFirst) {
    const CPaintManagerUI::TimePoint now{std::chrono::hours(1)};
    EXPECT_EQ(TimeToWait({}, {}, now), std::nullopt);
    EXPECT_EQ(TimeToWait(milliseconds(20), {}, now), milliseconds(20));
    EXPECT_EQ(TimeToWait({}, now + milliseconds(16), now), milliseconds(16));
    EXPECT_EQ(TimeToWait(milliseconds(20), now + milliseconds(16), now), milliseconds(16));
    EXPECT_EQ(TimeToWait(milliseconds(10), now + milliseconds(16), now), milliseconds(10));
}

TEST(WindowWait, ItIsNeverNegativeAndNeverEndsBeforeTheTick) {
    const CPaintManagerUI::TimePoint now{std::chrono::hours(1)};
    EXPECT_EQ(TimeToWait({}, now - milliseconds(5), now), milliseconds(0));
    EXPECT_EQ(TimeToWait(milliseconds(-5), {}, now), milliseconds(0));
    EXPECT_EQ(TimeToWait({}, now + std::chrono::microseconds(1), now), milliseconds(1));
}

TEST(WindowKeys, ShiftTurnsTheTabRound) {
    EXPECT_EQ(MeaningOf(DuiKey::kTab, {false, false, false}), DuiKey::kTab);
    EXPECT_EQ(MeaningOf(DuiKey::kTab, {false, true, false}), DuiKey::kShiftTab);
    EXPECT_EQ(MeaningOf(DuiKey::kUp, {false, true, false}), DuiKey::kUp);
}

TEST(WindowKeys, AKeyThatIsHeldMovesOnButPressesOnce) {
    EXPECT_EQ(MeaningOf(DuiKey::kDown, {true, false, false}), DuiKey::kDown);
    EXPECT_EQ(MeaningOf(DuiKey::kTab, {true, false, false}), DuiKey::kTab);
    EXPECT_EQ(MeaningOf(DuiKey::kEnter, {true, false, false}), std::nullopt);
    EXPECT_EQ(MeaningOf(DuiKey::kSpace, {true, false, false}), std::nullopt);
}

TEST(WindowKeys, WithCtrlOrAltAKeyMeansSomethingElse) {
    EXPECT_EQ(MeaningOf(DuiKey::kEnter, {false, false, true}), std::nullopt);
    EXPECT_EQ(MeaningOf({}, {false, false, false}), std::nullopt);
}

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
