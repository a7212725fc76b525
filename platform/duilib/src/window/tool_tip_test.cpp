#include "window/tool_tip.h"

#include "support/toolkit/painting_test.h"

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

// ---- In a window

class ToolTipInAWindow : public PaintingTest {
protected:
    void WaitHalfASecond() {
        window.Tick(kStart);
        window.Tick(kStart + milliseconds(500));
    }

    // Clicks on a button that then says why not, and waits for the tip.
    CButtonUI* RefusedClick() {
        auto* const button = Add<CButtonUI>({{L"pos", L"100,100,200,120"}});
        EXPECT_TRUE(Click(button));
        button->SetToolTip(L"Not now");
        WaitHalfASecond();
        return button;
    }
};

TEST_F(ToolTipInAWindow, ThePointerGetsItsTipAlsoAfterTheKeyboardWasUsed) {
    auto* const first = Add<CButtonUI>({{L"pos", L"0,0,50,50"}});
    auto* const second = Add<CButtonUI>({{L"pos", L"100,100,150,150"}, {L"tooltip", L"Pause"}});
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), first);
    window.MouseMove({120, 120});
    WaitHalfASecond();
    EXPECT_EQ(window.GetToolTipOwner(), second);
}

TEST_F(ToolTipInAWindow, TheSameTipAgainIsShownAgainAfterAClickButDoesNotFlicker) {
    CButtonUI* const button = RefusedClick();
    button->SetToolTip(L"Not now");
    EXPECT_EQ(window.GetToolTipOwner(), button);
    EXPECT_TRUE(Click(button));
    EXPECT_EQ(window.GetToolTipOwner(), nullptr);
    button->SetToolTip(L"Not now");
    window.Tick(kStart + milliseconds(600));
    window.Tick(kStart + milliseconds(1100));
    EXPECT_EQ(window.GetToolTipOwner(), button);
}

TEST_F(ToolTipInAWindow, ATipIsPaintedBelowItsControlAndTakenAwayAgain) {
    Add<CButtonUI>({{L"pos", L"100,100,200,120"}, {L"tooltip", L"Pause"}});
    window.MouseMove({150, 110});
    window.Tick(kStart);
    EXPECT_EQ(At(150, 140), kWhite);
    window.Tick(kStart + milliseconds(500));
    EXPECT_NE(At(120, 130), kWhite);
    EXPECT_NE(window.GetToolTipOwner(), nullptr);
    window.MouseMove({0, 0});
    EXPECT_EQ(At(120, 130), kWhite);
    EXPECT_EQ(window.GetToolTipOwner(), nullptr);
}

TEST_F(ToolTipInAWindow, ATipThatAClickSetsIsShownWithoutMovingThePointer) {
    CButtonUI* const button = RefusedClick();
    EXPECT_EQ(window.GetToolTipOwner(), button);
    button->SetToolTip(L"");
    EXPECT_EQ(window.GetToolTipOwner(), nullptr);
}

TEST_F(ToolTipInAWindow, TheFocusShowsItsTipAndEscapeTakesItAway) {
    auto* const button = Add<CButtonUI>({{L"pos", L"100,100,200,120"}, {L"tooltip", L"Pause"}});
    window.KeyDown(DuiKey::kTab);
    WaitHalfASecond();
    EXPECT_EQ(window.GetToolTipOwner(), button);
    EXPECT_TRUE(window.KeyDown(DuiKey::kEscape));
    EXPECT_EQ(window.GetToolTipOwner(), nullptr);
    EXPECT_FALSE(window.KeyDown(DuiKey::kEscape));
}

TEST_F(ToolTipInAWindow, ATipThatALayoutBroughtUnderThePointerIsTimed) {
    auto* const button = Add<CButtonUI>({{L"pos", L"0,0,20,20"}, {L"tooltip", L"Pause"}, {L"visible", L"false"}});
    window.MouseMove({5, 5});
    Repainted();
    button->SetVisible(true);
    EXPECT_FALSE(window.Tick(kStart));
    Repainted();
    EXPECT_EQ(window.NextTick(kStart), kStart + milliseconds(500));
}

}  // namespace
}  // namespace DuiLib
