#include "window/tool_tip.h"

#include "support/toolkit/toolkit_test.h"
#include "window/tool_tip_painter.h"

namespace DuiLib {
namespace {

using std::chrono::milliseconds;

class ToolTipTimerTest : public testing::Test {
protected:
    CLabelUI control;
    CLabelUI other;
    ToolTipTimer tip;
    const ToolTipTimer::TimePoint start{std::chrono::hours(1)};
};

TEST_F(ToolTipTimerTest, ATipIsShownHalfASecondAfterThePointerCameToRest) {
    tip.Over(&control);
    EXPECT_FALSE(tip.Tick(start));
    EXPECT_EQ(tip.Due(start), start + milliseconds(500));
    EXPECT_FALSE(tip.Tick(start + milliseconds(499)));
    EXPECT_EQ(tip.Shown(), nullptr);
    EXPECT_TRUE(tip.Tick(start + milliseconds(500)));
    EXPECT_EQ(tip.Shown(), &control);
    EXPECT_FALSE(tip.Due(start + milliseconds(500)));
}

TEST_F(ToolTipTimerTest, AnotherControlHidesTheTipAndWaitsForItsOwn) {
    tip.Over(&control);
    tip.Tick(start);
    tip.Tick(start + milliseconds(500));
    tip.Over(&other);
    EXPECT_EQ(tip.Shown(), nullptr);
    tip.Tick(start + milliseconds(600));
    EXPECT_FALSE(tip.Tick(start + milliseconds(1000)));
    EXPECT_TRUE(tip.Tick(start + milliseconds(1100)));
    EXPECT_EQ(tip.Shown(), &other);
}

TEST_F(ToolTipTimerTest, ADismissedTipStaysAwayUntilItsTextIsAnother) {
    tip.Over(&control);
    tip.Tick(start);
    tip.Tick(start + milliseconds(500));
    tip.Dismiss();
    tip.Over(&control);
    EXPECT_FALSE(tip.Tick(start + milliseconds(5000)));
    EXPECT_EQ(tip.Shown(), nullptr);
    tip.Restart();
    tip.Tick(start + milliseconds(5000));
    EXPECT_TRUE(tip.Tick(start + milliseconds(5500)));
}

TEST_F(ToolTipTimerTest, NothingIsWaitedForWithoutAControl) {
    tip.Restart();
    EXPECT_FALSE(tip.Tick(start));
    EXPECT_FALSE(tip.Due(start));
}

class ToolTipPlaceTest : public ToolkitTest {
protected:
    static constexpr CDuiSize kWindow{400, 300};
};

TEST_F(ToolTipPlaceTest, ATipStandsBelowTheMiddleOfItsControl) {
    // 10 letters of 10 x 20 and a padding of 12 and 8 around them
    EXPECT_EQ(PlaceToolTip(L"0123456789", {180, 100, 220, 120}, kWindow), (CDuiRect{138, 126, 262, 162}));
}

TEST_F(ToolTipPlaceTest, ATipStandsAboveWhereThereIsNoRoomBelow) {
    EXPECT_EQ(PlaceToolTip(L"0123456789", {180, 270, 220, 290}, kWindow), (CDuiRect{138, 228, 262, 264}));
}

TEST_F(ToolTipPlaceTest, ATipStaysWithinTheWindowsEdges) {
    EXPECT_EQ(PlaceToolTip(L"0123456789", {390, 100, 400, 120}, kWindow).right, 394);
    EXPECT_EQ(PlaceToolTip(L"0123456789", {0, 100, 10, 120}, kWindow).left, 6);
}

TEST_F(ToolTipPlaceTest, ALongTipIsWrapped) {
    const CDuiRect place = PlaceToolTip(std::wstring(56, L'x'), {180, 100, 220, 120}, kWindow);
    EXPECT_EQ(place.Width(), 280 + 24);
    EXPECT_EQ(place.Height(), 40 + 16);
}

}  // namespace
}  // namespace DuiLib
