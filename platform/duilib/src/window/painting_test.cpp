// What a window's picture looks like: single pixels of small trees, and which part of it is painted when.
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t kWhite = 0xFFFFFFFF;
constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr CPaintManagerUI::TimePoint kStart{std::chrono::hours(1)};

class PaintingTest : public WindowTest<CContainerUI> {
protected:
    std::uint32_t At(int x, int y) {
        window.Paint(picture);
        return picture.Pixel(x, y);
    }
    std::vector<CDuiRect> Repainted() { return window.Paint(picture); }

    PaintSurface picture;
};

// ---- Grounds and borders

TEST_F(PaintingTest, AnEmptyWindowIsWhite) { EXPECT_EQ(At(0, 0), kWhite); }

TEST_F(PaintingTest, AGroundFillsItsControlAndNothingElse) {
    Add({{L"pos", L"10,10,20,20"}, {L"bkcolor", L"#FFFF0000"}});
    EXPECT_EQ(At(10, 10), kRed);
    EXPECT_EQ(At(19, 19), kRed);
    EXPECT_EQ(At(9, 10), kWhite);
    EXPECT_EQ(At(20, 19), kWhite);
}

TEST_F(PaintingTest, AColourIsReadWithAndWithoutItsSignAndItsAlphaCounts) {
    Add({{L"pos", L"0,0,10,10"}, {L"bkcolor", L"#0F000000"}});
    Add({{L"pos", L"20,0,30,10"}, {L"bkcolor", L"99000000"}});
    EXPECT_EQ(At(5, 5), 0xFFF0F0F0u);   // 255 - 15
    EXPECT_EQ(At(25, 5), 0xFF666666u);  // 255 - 153
}

TEST_F(PaintingTest, RoundCornersAreLeftOut) {
    Add({{L"pos", L"0,0,28,28"}, {L"bkcolor", L"#FFFF0000"}, {L"bkround", L"28,28"}});
    EXPECT_EQ(At(0, 0), kWhite);
    EXPECT_EQ(At(14, 2), kRed);
    EXPECT_EQ(At(14, 14), kRed);
}

TEST_F(PaintingTest, ARoundContainerCutsWhatLiesInIt) {
    auto* const pill = Add<CContainerUI>({{L"pos", L"0,0,28,28"}, {L"bkround", L"28,28"}});
    Add({{L"bkcolor", L"#FF0000FF"}}, pill);
    EXPECT_EQ(At(0, 0), kWhite);
    EXPECT_EQ(At(14, 14), kBlue);
}

// White over blue in a round container: no blue may shine through at the round edge.
TEST_F(PaintingTest, WhatIsCoveredInARoundContainerLeavesNoFringe) {
    auto* const pill = Add<CContainerUI>({{L"pos", L"10,10,38,38"}, {L"bkround", L"28,28"}});
    Add({{L"bkcolor", L"#FF0000FF"}}, pill);
    Add({{L"bkcolor", L"#FFFFFFFF"}}, pill);
    window.Paint(picture);
    for (int y = 8; y < 40; ++y) {
        for (int x = 8; x < 40; ++x) EXPECT_EQ(picture.Pixel(x, y), kWhite) << x << "," << y;
    }
}

TEST_F(PaintingTest, ABorderLiesWithinItsControl) {
    Add({{L"pos", L"0,0,10,10"}, {L"bordersize", L"2"}, {L"bordercolor", L"#FFFF0000"}});
    EXPECT_EQ(At(0, 5), kRed);
    EXPECT_EQ(At(1, 5), kRed);
    EXPECT_EQ(At(2, 5), kWhite);
    EXPECT_EQ(At(10, 5), kWhite);
}

TEST_F(PaintingTest, TheBordersFillBelongsToTheBorder) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,10,10"}, {L"borderfillcolor", L"#FFFF0000"}});
    EXPECT_EQ(At(5, 5), kWhite);
    label->SetAttribute(L"bordersize", L"1");
    EXPECT_EQ(At(5, 5), kRed);
    label->SetAttribute(L"bordersize", L"0");
    EXPECT_EQ(At(5, 5), kWhite);
}

TEST_F(PaintingTest, ABorderWithoutAColourHasTheTexts) {
    Add<CLabelUI>({{L"pos", L"0,0,10,10"}, {L"bordersize", L"1"}, {L"textcolor", L"#FFFF0000"}});
    EXPECT_EQ(At(0, 5), kRed);
}

TEST_F(PaintingTest, LengthsGrowWithTheScale) {
    CResourceManager::GetInstance()->SetScale(200);
    Add({{L"pos", L"0,0,10,10"}, {L"bordersize", L"1"}, {L"bordercolor", L"#FFFF0000"}});
    EXPECT_EQ(At(1, 10), kRed);
    EXPECT_EQ(At(2, 10), kWhite);
    EXPECT_EQ(At(19, 10), kRed);
}

TEST_F(PaintingTest, HiddenControlsAreNotPainted) {
    auto* const outer = Add<CContainerUI>();
    Add({{L"bkcolor", L"#FFFF0000"}}, outer);
    EXPECT_EQ(At(5, 5), kRed);
    outer->SetVisible(false);
    EXPECT_EQ(At(5, 5), kWhite);
}

TEST_F(PaintingTest, TheLastChildIsOnTopAndContentEndsAtItsContainersEdge) {
    auto* const box = Add<CContainerUI>({{L"pos", L"0,0,10,10"}});
    Add({{L"pos", L"0,0,50,50"}, {L"bkcolor", L"#FFFF0000"}}, box);
    Add({{L"pos", L"0,0,5,5"}, {L"bkcolor", L"#FF0000FF"}}, box);
    EXPECT_EQ(At(2, 2), kBlue);
    EXPECT_EQ(At(7, 7), kRed);
    EXPECT_EQ(At(12, 12), kWhite);
}

// ---- Looks of the moment

TEST_F(PaintingTest, AButtonShowsThatThePointerIsOverItAndThatItIsPressed) {
    Add<CButtonUI>({{L"pos", L"0,0,20,20"},
                    {L"bkcolor", L"#FF111111"},
                    {L"hotbkcolor", L"#FF222222"},
                    {L"pushedbkcolor", L"#FF333333"}});
    EXPECT_EQ(At(5, 5), 0xFF111111u);
    window.MouseMove({5, 5});
    EXPECT_EQ(At(5, 5), 0xFF222222u);
    window.ButtonDown({5, 5});
    EXPECT_EQ(At(5, 5), 0xFF333333u);
    window.MouseMove({50, 50});
    EXPECT_EQ(At(5, 5), 0xFF111111u);
    window.ButtonUp({50, 50});
    window.MouseMove({5, 5});
    EXPECT_EQ(At(5, 5), 0xFF222222u);
    window.MouseLeave();
    EXPECT_EQ(At(5, 5), 0xFF111111u);
}

TEST_F(PaintingTest, ALabelUnderAButtonIsHotWhileThePointerIsOverIt) {
    Add<CLabelUI>({{L"pos", L"0,0,20,20"}, {L"bkcolor", L"#FF111111"}, {L"hotbkcolor", L"#FF222222"}});
    Add<CButtonUI>({{L"pos", L"0,0,20,20"}});
    EXPECT_EQ(At(5, 5), 0xFF111111u);
    window.MouseMove({5, 5});
    EXPECT_EQ(At(5, 5), 0xFF222222u);
    window.MouseMove({25, 5});
    EXPECT_EQ(At(5, 5), 0xFF111111u);
}

TEST_F(PaintingTest, ADisabledControlIsNotHot) {
    Add<CButtonUI>({{L"pos", L"0,0,20,20"}, {L"enabled", L"false"}, {L"hotbkcolor", L"#FF222222"}});
    window.MouseMove({5, 5});
    EXPECT_EQ(At(5, 5), kWhite);
}

TEST_F(PaintingTest, WhatComesUnderARestingPointerIsHot) {
    auto* const button = Add<CButtonUI>({{L"pos", L"0,0,20,20"}, {L"hotbkcolor", L"#FF222222"}});
    button->SetVisible(false);
    window.MouseMove({5, 5});
    EXPECT_EQ(At(5, 5), kWhite);
    button->SetVisible(true);
    EXPECT_EQ(At(5, 5), 0xFF222222u);
}

TEST_F(PaintingTest, TheFocusHasARingAfterTheKeyboardWasUsed) {
    auto* const button = Add<CButtonUI>({{L"pos", L"20,20,60,40"}});
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(At(40, 18), 0xFF0A59F7u);
    EXPECT_EQ(At(40, 30), kWhite);
    EXPECT_TRUE(Click(button));
    EXPECT_EQ(At(40, 18), kWhite);
    EXPECT_EQ(window.GetFocus(), button);
}

TEST_F(PaintingTest, ADisabledTextIsFadedUnlessItHasAColourForThat) {
    CRenderEngine::SetTextMeasurer(nullptr);
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,60,60"}, {L"text", L"████"}, {L"textcolor", L"#FFFF0000"}});
    const auto darkest = [this] {
        window.Paint(picture);
        std::uint32_t least = 0xFF;
        for (int i = 0; i < 60; ++i) least = std::min(least, picture.Pixel(i, 30) & 0xFF);
        return least;
    };
    const std::uint32_t full = darkest();
    label->SetEnabled(false);
    EXPECT_GT(darkest(), full);
}

// ---- Texts

class TextPaintingTest : public PaintingTest {
protected:
    TextPaintingTest() { CRenderEngine::SetTextMeasurer(nullptr); }
    ~TextPaintingTest() override { UICulture::GetInstance()->Clear(); }

    // The first and last column of the window's first 40 rows that is not white; -1 when all is.
    std::pair<int, int> InkColumns(int from = 0, int to = 400) {
        window.Paint(picture);
        std::pair<int, int> ink{-1, -1};
        for (int x = from; x < to; ++x) {
            for (int y = 0; y < 40; ++y) {
                if (picture.Pixel(x, y) == kWhite) continue;
                if (ink.first < 0) ink.first = x;
                ink.second = x;
            }
        }
        return ink;
    }
};

TEST_F(TextPaintingTest, TextStandsWhereItsAlignmentSays) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,300,40"}, {L"text", L"Update"}});
    const auto left = InkColumns();
    EXPECT_LT(left.second, 100);
    label->SetAttribute(L"align", L"center");
    const auto middle = InkColumns();
    EXPECT_NEAR((middle.first + middle.second) / 2, 150, 2);
    label->SetAttribute(L"align", L"right");
    EXPECT_GT(InkColumns().first, 200);
}

TEST_F(TextPaintingTest, LeftIsWhereReadingStarts) {
    TemporaryFolder folder;
    UICulture::GetInstance()->Load(folder.Write("rtl.xml", "<Language name='xx' rtl='true'/>"));
    window.SetClientSize({300, 40});
    Add<CLabelUI>({{L"text", L"Update"}});
    EXPECT_GT(InkColumns(0, 300).first, 200);
}

TEST_F(TextPaintingTest, TextThatDoesNotFitEndsAtTheControlsEdge) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,50,40"}, {L"text", L"WWWWWWWWWWWWWWWWWWWW"}});
    EXPECT_EQ(InkColumns().second, 49);
    label->SetAttribute(L"endellipsis", L"true");
    EXPECT_LE(InkColumns().second, 49);
}

TEST_F(TextPaintingTest, TextPaddingIsLeftFree) {
    Add<CLabelUI>({{L"pos", L"0,0,300,40"}, {L"textpadding", L"40,0,0,0"}, {L"text", L"Update"}});
    EXPECT_GE(InkColumns().first, 40);
}

TEST_F(TextPaintingTest, TheHotTextColourIsUsedUnderThePointer) {
    Add<CLabelUI>({{L"pos", L"0,0,300,40"}, {L"text", L"Update"}, {L"hottextcolor", L"#00FFFFFF"}});
    EXPECT_GE(InkColumns().first, 0);
    window.MouseMove({10, 10});
    EXPECT_EQ(InkColumns().first, -1);
}

// ---- What is painted again

TEST_F(PaintingTest, NothingIsPaintedWhereNothingChanged) {
    Add({{L"bkcolor", L"#FFFF0000"}});
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 400, 300}));
    EXPECT_THAT(Repainted(), IsEmpty());
}

TEST_F(PaintingTest, AChangeRepaintsItsControlAlone) {
    auto* const label = Add<CLabelUI>({{L"pos", L"10,20,110,40"}});
    Add<CLabelUI>({{L"pos", L"10,60,110,80"}});
    Repainted();
    label->SetText(L"new");
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{10, 20, 110, 40}));
    label->SetAttribute(L"bkcolor", L"#FFFF0000");
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{10, 20, 110, 40}));
    label->SetAttribute(L"bkcolor", L"#FFFF0000");
    label->SetText(L"new");
    EXPECT_THAT(Repainted(), IsEmpty());
}

TEST_F(PaintingTest, AControlThatMovesRepaintsWhereItWasAndWhereItIs) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,10,10"}});
    Repainted();
    label->SetAttribute(L"pos", L"50,50,60,60");
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 10, 10}, CDuiRect{50, 50, 60, 60}));
}

TEST_F(PaintingTest, AControlThatGoesOrComesRepaintsItsPlace) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,10,10"}});
    Repainted();
    root->Remove(label);
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 10, 10}));
    Add<CLabelUI>({{L"pos", L"20,20,30,30"}});
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{20, 20, 30, 30}));
}

TEST_F(PaintingTest, ChangesOfWhatIsNotSeenRepaintNothing) {
    auto* const hidden = Add<CLabelUI>({{L"pos", L"0,0,10,10"}, {L"visible", L"false"}});
    auto* const outside = Add<CLabelUI>({{L"pos", L"500,0,510,10"}});
    Repainted();
    hidden->SetText(L"new");
    outside->SetText(L"new");
    EXPECT_THAT(Repainted(), IsEmpty());
}

TEST_F(PaintingTest, AnotherSizeScaleOrPictureIsPaintedWhole) {
    Repainted();
    window.SetClientSize({200, 100});
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 200, 100}));
    EXPECT_EQ(picture.Size(), (CDuiSize{200, 100}));
    CResourceManager::GetInstance()->SetScale(150);
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 200, 100}));
    PaintSurface other;
    EXPECT_THAT(window.Paint(other), ElementsAre(CDuiRect{0, 0, 200, 100}));
}

TEST_F(PaintingTest, WhatIsPaintedInPiecesIsWhatIsPaintedWhole) {
    auto* const box = Add<CContainerUI>({{L"pos", L"0,0,100,40"}, {L"bkround", L"28,28"}, {L"bkcolor", L"#330000FF"}});
    auto* const layer = Add({{L"pos", L"20,0,100,0"}, {L"bkcolor", L"#80FFFFFF"}}, box);
    Repainted();
    for (const wchar_t* pos : {L"25,0,100,0", L"50,0,100,0", L"99,0,100,0"}) {
        layer->SetAttribute(L"pos", pos);
        Repainted();
    }
    PaintSurface whole;
    window.Paint(whole);
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 110; ++x) ASSERT_EQ(picture.Pixel(x, y), whole.Pixel(x, y)) << x << "," << y;
    }
}

TEST_F(PaintingTest, WhoeverPaintsIsWokenOnceForAllChangesSinceThen) {
    Repainted();
    int woken = 0;
    window.SetWakeUp([&woken] { ++woken; });
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,10,10"}});
    label->SetText(L"a");
    label->SetText(L"b");
    EXPECT_EQ(woken, 1);
    Repainted();
    label->SetText(L"c");
    EXPECT_EQ(woken, 2);
    Repainted();
    Repainted();
    EXPECT_EQ(woken, 2);
}

TEST_F(PaintingTest, ASurfaceThatWasMadeAnewIsPaintedWholeWhereverItLies) {
    Add({{L"bkcolor", L"#FFFF0000"}});
    std::optional<PaintSurface> surface(std::in_place);
    window.Paint(*surface);
    surface.emplace();
    EXPECT_THAT(window.Paint(*surface), ElementsAre(CDuiRect{0, 0, 400, 300}));
    EXPECT_EQ(surface->Pixel(5, 5), kRed);
}

TEST_F(PaintingTest, WhatComesOrGoesInAHiddenPlaceWakesToo) {
    auto* const outer = Add<CContainerUI>({{L"visible", L"false"}});
    auto* const heading = Add<CLabelUI>({}, outer);
    Repainted();
    int woken = 0;
    window.SetWakeUp([&woken] { ++woken; });
    heading->SetVisible(false);
    EXPECT_EQ(woken, 1);
}

TEST_F(PaintingTest, WhatPaintingDoesItselfWakesNobody) {
    auto* const view = Add<CScrollViewUI>();
    Add<CButtonUI>({{L"height", L"1000"}}, view);
    Repainted();
    int woken = 0;
    window.SetWakeUp([&woken] { ++woken; });
    window.MouseWheel({50, 50}, 3);
    EXPECT_EQ(woken, 1);
    auto now = kStart;
    for (auto next = window.Tick(now); next; next = window.NextTick(now)) {
        Repainted();
        EXPECT_GT(*next, now);
        now = *next;
        window.Tick(now);
    }
    EXPECT_EQ(view->GetScrollPos(), 180);
    EXPECT_EQ(woken, 1);
}

TEST_F(PaintingTest, ATipThatALayoutBroughtUnderThePointerIsTimed) {
    auto* const button = Add<CButtonUI>({{L"pos", L"0,0,20,20"}, {L"tooltip", L"Pause"}, {L"visible", L"false"}});
    window.MouseMove({5, 5});
    Repainted();
    button->SetVisible(true);
    EXPECT_FALSE(window.Tick(kStart));
    Repainted();
    EXPECT_EQ(window.NextTick(kStart), kStart + std::chrono::milliseconds(500));
}

TEST_F(PaintingTest, WhatSomebodyElseLaidOutUnderThePointerIsHotToo) {
    auto* const button = Add<CButtonUI>({{L"hotbkcolor", L"#FF222222"}, {L"pos", L"100,0,120,20"}});
    window.MouseMove({5, 5});
    Repainted();
    button->SetAttribute(L"pos", L"0,0,20,20");
    button->GetPos();  // lays out
    EXPECT_EQ(At(5, 5), 0xFF222222u);
}

TEST_F(PaintingTest, AHotColourThatComesUnderThePointerIsShown) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,20,20"}});
    window.MouseMove({5, 5});
    Repainted();
    label->SetAttribute(L"hotbkcolor", L"#FF222222");
    EXPECT_EQ(At(5, 5), 0xFF222222u);
}

TEST_F(PaintingTest, WhatIsScrolledOutUnderThePointerIsNotHot) {
    auto* const view = Add<CScrollViewUI>({{L"pos", L"0,50,400,150"}});
    Add<CLabelUI>({{L"height", L"1000"}, {L"bkcolor", L"#FF111111"}, {L"hotbkcolor", L"#FF222222"}}, view);
    window.MouseMove({5, 5});
    view->ScrollTo(200, false);
    EXPECT_EQ(At(5, 60), 0xFF111111u);
}

TEST_F(PaintingTest, AButtonThatIsDisabledWhilePressedLosesThatLook) {
    auto* const button = Add<CButtonUI>({{L"pos", L"0,0,20,20"}, {L"pushedbkcolor", L"#FF333333"}});
    window.ButtonDown({5, 5});
    EXPECT_EQ(At(5, 5), 0xFF333333u);
    button->SetEnabled(false);
    EXPECT_EQ(At(5, 5), kWhite);
}

TEST_F(PaintingTest, TheFocusRingGoesWithTheContainerAroundItsButton) {
    auto* const box = Add<CContainerUI>({{L"pos", L"20,20,60,40"}});
    Add<CButtonUI>({}, box);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(At(40, 18), 0xFF0A59F7u);
    box->SetVisible(false);
    EXPECT_EQ(At(40, 18), kWhite);
}

// ---- Absurd sizes

TEST_F(PaintingTest, AControlOfAbsurdSizeIsPainted) {
    for (const wchar_t* round : {L"0,0", L"28,28"}) {
        auto* const huge =
            Add<CContainerUI>({{L"pos", L"-9,-9,16777216,16777216"}, {L"bkcolor", L"#FFFF0000"}, {L"bkround", round}});
        Add({{L"pos", L"100,0,16777216,16777216"}, {L"bkcolor", L"#FF0000FF"}}, huge);
        EXPECT_EQ(At(20, 299), kRed);
        EXPECT_EQ(At(399, 299), kBlue);
        huge->SetAttribute(L"bordersize", L"9000000");
        huge->SetAttribute(L"bordercolor", L"#FF00FF00");
        EXPECT_EQ(At(20, 299), 0xFF00FF00u);
        root->Remove(huge);
    }
}

TEST_F(PaintingTest, WindowsWithoutASizeOrAScaleAreSurvived) {
    Add<CButtonUI>({{L"text", L"x"}, {L"bkround", L"8,8"}, {L"bordersize", L"1"}});
    window.SetClientSize({0, 0});
    EXPECT_THAT(Repainted(), IsEmpty());
    window.SetClientSize({10, 10});
    CResourceManager::GetInstance()->SetScale(0);
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 10, 10}));
}

// ---- Tool tips

TEST_F(PaintingTest, ThePointerGetsItsTipAlsoAfterTheKeyboardWasUsed) {
    auto* const first = Add<CButtonUI>({{L"pos", L"0,0,50,50"}});
    auto* const second = Add<CButtonUI>({{L"pos", L"100,100,150,150"}, {L"tooltip", L"Pause"}});
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), first);
    window.MouseMove({120, 120});
    window.Tick(kStart);
    window.Tick(kStart + std::chrono::milliseconds(500));
    EXPECT_EQ(window.GetToolTipOwner(), second);
}

TEST_F(PaintingTest, TheSameTipAgainIsShownAgainAfterAClickButDoesNotFlicker) {
    auto* const button = Add<CButtonUI>({{L"pos", L"100,100,150,150"}});
    EXPECT_TRUE(Click(button));
    button->SetToolTip(L"Not now");
    window.Tick(kStart);
    window.Tick(kStart + std::chrono::milliseconds(500));
    button->SetToolTip(L"Not now");
    EXPECT_EQ(window.GetToolTipOwner(), button);
    EXPECT_TRUE(Click(button));
    EXPECT_EQ(window.GetToolTipOwner(), nullptr);
    button->SetToolTip(L"Not now");
    window.Tick(kStart + std::chrono::milliseconds(600));
    window.Tick(kStart + std::chrono::milliseconds(1100));
    EXPECT_EQ(window.GetToolTipOwner(), button);
}

TEST_F(PaintingTest, ATipIsPaintedBelowItsControlAndTakenAwayAgain) {
    Add<CButtonUI>({{L"pos", L"100,100,200,120"}, {L"tooltip", L"Pause"}});
    window.MouseMove({150, 110});
    window.Tick(kStart);
    EXPECT_EQ(At(150, 140), kWhite);
    window.Tick(kStart + std::chrono::milliseconds(500));
    EXPECT_NE(At(120, 130), kWhite);
    EXPECT_NE(window.GetToolTipOwner(), nullptr);
    window.MouseMove({0, 0});
    EXPECT_EQ(At(120, 130), kWhite);
    EXPECT_EQ(window.GetToolTipOwner(), nullptr);
}

TEST_F(PaintingTest, ATipThatAClickSetsIsShownWithoutMovingThePointer) {
    auto* const button = Add<CButtonUI>({{L"pos", L"100,100,200,120"}});
    EXPECT_TRUE(Click(button));
    button->SetToolTip(L"Not now");
    window.Tick(kStart);
    window.Tick(kStart + std::chrono::milliseconds(500));
    EXPECT_EQ(window.GetToolTipOwner(), button);
    button->SetToolTip(L"");
    EXPECT_EQ(window.GetToolTipOwner(), nullptr);
}

TEST_F(PaintingTest, TheFocusShowsItsTipAndEscapeTakesItAway) {
    auto* const button = Add<CButtonUI>({{L"pos", L"100,100,200,120"}, {L"tooltip", L"Pause"}});
    window.KeyDown(DuiKey::kTab);
    window.Tick(kStart);
    window.Tick(kStart + std::chrono::milliseconds(500));
    EXPECT_EQ(window.GetToolTipOwner(), button);
    EXPECT_TRUE(window.KeyDown(DuiKey::kEscape));
    EXPECT_EQ(window.GetToolTipOwner(), nullptr);
    EXPECT_FALSE(window.KeyDown(DuiKey::kEscape));
}

// ---- Input that one part of the window has for itself

TEST_F(PaintingTest, AModalControlHasTheInputForItself) {
    auto* const below = Add<CButtonUI>({{L"pos", L"0,0,50,50"}});
    auto* const question = Add<CContainerUI>();
    auto* const answer = Add<CButtonUI>({{L"pos", L"100,100,150,150"}}, question);
    window.SetModal(question);
    EXPECT_FALSE(Click(below));
    EXPECT_TRUE(Click(answer));
    window.KeyDown(DuiKey::kTab);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), answer);
    question->SetVisible(false);
    EXPECT_TRUE(Click(below));
}

TEST_F(PaintingTest, TheFocusComesBackWhenAModalControlEnds) {
    auto* const below = Add<CButtonUI>({{L"pos", L"0,0,50,50"}});
    auto* const question = Add<CContainerUI>({{L"visible", L"false"}});
    auto* const answer = Add<CButtonUI>({{L"pos", L"100,100,150,150"}}, question);
    window.SetFocus(below);
    question->SetVisible(true);
    window.SetModal(question);
    EXPECT_EQ(window.GetFocus(), nullptr);
    window.SetFocus(answer);
    question->SetVisible(false);
    window.SetModal(nullptr);
    EXPECT_EQ(window.GetFocus(), below);
}

TEST_F(PaintingTest, EscapeCancelsAModalControl) {
    struct Pump : CNotifyPump {
        const DUI_MSGMAP* GetMessageMap() const override {
            static const DUI_MSGMAP_ENTRY entries[] = {{kNotifyCancel, nullptr, &CNotifyPump::OnClick},
                                                       {nullptr, nullptr, nullptr}};
            static const DUI_MSGMAP map{nullptr, entries};
            return &map;
        }
        void OnClick(TNotifyUI& message) override { cancelled = message.sender; }
        CControlUI* cancelled = nullptr;
    } pump;
    window.AddNotifyPump(&pump);
    auto* const question = Add<CContainerUI>();
    EXPECT_FALSE(window.KeyDown(DuiKey::kEscape));
    window.SetModal(question);
    EXPECT_TRUE(window.KeyDown(DuiKey::kEscape));
    EXPECT_EQ(pump.cancelled, question);
}

TEST_F(PaintingTest, TabGoesOnFromAButtonThatHasGivenWay) {
    auto* const first = Add<CButtonUI>();
    auto* const second = Add<CButtonUI>();
    auto* const third = Add<CButtonUI>();
    first->SetVisible(true);
    window.KeyDown(DuiKey::kTab);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), second);
    second->SetVisible(false);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), third);
}

// ---- Files

TEST(PaintSurfaceTest, APictureIsSavedAndLoadedAsItIs) {
    const TemporaryFolder folder;
    PaintSurface picture({3, 2});
    picture.Pixels()[0] = kRed;
    picture.Pixels()[5] = 0x80800000;
    picture.SavePng(folder.Path() / "x.png");
    const PaintSurface loaded = PaintSurface::LoadPng(folder.Path() / "x.png");
    EXPECT_EQ(loaded.Size(), (CDuiSize{3, 2}));
    EXPECT_EQ(loaded.Pixel(0, 0), kRed);
    EXPECT_EQ(loaded.Pixel(2, 1), 0x80800000u);
    EXPECT_EQ(loaded.Pixel(1, 0), 0u);
}

TEST(PaintSurfaceTest, AFileThatCannotBeReadOrWrittenIsNamed) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / "missing" / "x.png";
    for (const auto& attempt :
         {std::function<void()>([&file] { PaintSurface::LoadPng(file); }), std::function<void()>([&file] {
              PaintSurface({1, 1}).SavePng(file);
          })}) {
        try {
            attempt();
            FAIL() << "no error";
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(file.string() + ": "));
        }
    }
}

}  // namespace
}  // namespace DuiLib
