// What a control looks like in the window's picture: single pixels of small trees.
#include "support/toolkit/painting_test.h"

namespace DuiLib {

using ControlPainterTest = PaintingTest;

// ---- Grounds and borders

TEST_F(ControlPainterTest, AnEmptyWindowIsWhite) { EXPECT_EQ(At(0, 0), kWhite); }

TEST_F(ControlPainterTest, AGroundFillsItsControlAndNothingElse) {
    Add({{L"pos", L"10,10,20,20"}, {L"bkcolor", L"#FFFF0000"}});
    EXPECT_EQ(At(10, 10), kRed);
    EXPECT_EQ(At(19, 19), kRed);
    EXPECT_EQ(At(9, 10), kWhite);
    EXPECT_EQ(At(20, 19), kWhite);
}

TEST_F(ControlPainterTest, AColourIsReadWithAndWithoutItsSignAndItsAlphaCounts) {
    Add({{L"pos", L"0,0,10,10"}, {L"bkcolor", L"#0F000000"}});
    Add({{L"pos", L"20,0,30,10"}, {L"bkcolor", L"99000000"}});
    EXPECT_EQ(At(5, 5), 0xFFF0F0F0u);   // 255 - 15
    EXPECT_EQ(At(25, 5), 0xFF666666u);  // 255 - 153
}

TEST_F(ControlPainterTest, RoundCornersAreLeftOut) {
    Add({{L"pos", L"0,0,28,28"}, {L"bkcolor", L"#FFFF0000"}, {L"bkround", L"28,28"}});
    EXPECT_EQ(At(0, 0), kWhite);
    EXPECT_EQ(At(14, 2), kRed);
    EXPECT_EQ(At(14, 14), kRed);
}

TEST_F(ControlPainterTest, ARoundContainerCutsWhatLiesInIt) {
    auto* const pill = Add<CContainerUI>({{L"pos", L"0,0,28,28"}, {L"bkround", L"28,28"}});
    Add({{L"bkcolor", L"#FF0000FF"}}, pill);
    EXPECT_EQ(At(0, 0), kWhite);
    EXPECT_EQ(At(14, 14), kBlue);
}

// White over blue in a round container: no blue may shine through at the round edge.
TEST_F(ControlPainterTest, WhatIsCoveredInARoundContainerLeavesNoFringe) {
    auto* const pill = Add<CContainerUI>({{L"pos", L"10,10,38,38"}, {L"bkround", L"28,28"}});
    Add({{L"bkcolor", L"#FF0000FF"}}, pill);
    Add({{L"bkcolor", L"#FFFFFFFF"}}, pill);
    window.Paint(picture);
    for (int y = 8; y < 40; ++y) {
        for (int x = 8; x < 40; ++x) EXPECT_EQ(picture.Pixel(x, y), kWhite) << x << "," << y;
    }
}

TEST_F(ControlPainterTest, ABorderLiesWithinItsControl) {
    Add({{L"pos", L"0,0,10,10"}, {L"bordersize", L"2"}, {L"bordercolor", L"#FFFF0000"}});
    EXPECT_EQ(At(0, 5), kRed);
    EXPECT_EQ(At(1, 5), kRed);
    EXPECT_EQ(At(2, 5), kWhite);
    EXPECT_EQ(At(10, 5), kWhite);
}

TEST_F(ControlPainterTest, TheBordersFillBelongsToTheBorder) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,10,10"}, {L"borderfillcolor", L"#FFFF0000"}});
    EXPECT_EQ(At(5, 5), kWhite);
    label->SetAttribute(L"bordersize", L"1");
    EXPECT_EQ(At(5, 5), kRed);
    label->SetAttribute(L"bordersize", L"0");
    EXPECT_EQ(At(5, 5), kWhite);
}

TEST_F(ControlPainterTest, ABorderWithoutAColourHasTheTexts) {
    Add<CLabelUI>({{L"pos", L"0,0,10,10"}, {L"bordersize", L"1"}, {L"textcolor", L"#FFFF0000"}});
    EXPECT_EQ(At(0, 5), kRed);
}

TEST_F(ControlPainterTest, LengthsGrowWithTheScale) {
    CResourceManager::GetInstance()->SetScale(200);
    Add({{L"pos", L"0,0,10,10"}, {L"bordersize", L"1"}, {L"bordercolor", L"#FFFF0000"}});
    EXPECT_EQ(At(1, 10), kRed);
    EXPECT_EQ(At(2, 10), kWhite);
    EXPECT_EQ(At(19, 10), kRed);
}

TEST_F(ControlPainterTest, HiddenControlsAreNotPainted) {
    auto* const outer = Add<CContainerUI>();
    Add({{L"bkcolor", L"#FFFF0000"}}, outer);
    EXPECT_EQ(At(5, 5), kRed);
    outer->SetVisible(false);
    EXPECT_EQ(At(5, 5), kWhite);
}

TEST_F(ControlPainterTest, TheLastChildIsOnTopAndContentEndsAtItsContainersEdge) {
    auto* const box = Add<CContainerUI>({{L"pos", L"0,0,10,10"}});
    Add({{L"pos", L"0,0,50,50"}, {L"bkcolor", L"#FFFF0000"}}, box);
    Add({{L"pos", L"0,0,5,5"}, {L"bkcolor", L"#FF0000FF"}}, box);
    EXPECT_EQ(At(2, 2), kBlue);
    EXPECT_EQ(At(7, 7), kRed);
    EXPECT_EQ(At(12, 12), kWhite);
}

// ---- Values that cannot be read, and whose they are

namespace {

constexpr struct {
    const wchar_t* attribute;
    const wchar_t* readable;
    std::uint32_t edge, inside;            // with the readable value
    std::uint32_t edgeAfter, insideAfter;  // with one that cannot be read set over it
} kUnreadableOverReadable[] = {
    {L"bkcolor", L"#FF00FF00", kRed, kGreen, kRed, kWhite},
    {L"bordersize", L"5", kRed, kWhite, kWhite, kWhite},
    {L"bordercolor", L"#FF00FF00", kGreen, kWhite, kRed, kWhite},
    {L"borderfillcolor", L"#FF00FF00", kRed, kGreen, kRed, kWhite},
};

}  // namespace

TEST_F(ControlPainterTest, AValueThatCannotBeReadIsNoValueAndTheOneBeforeIsForgotten) {
    for (const auto& [attribute, readable, edge, inside, edgeAfter, insideAfter] : kUnreadableOverReadable) {
        SCOPED_TRACE(::testing::PrintToString(std::wstring(attribute)));
        auto* const label =
            Add<CLabelUI>({{L"pos", L"0,0,20,20"}, {L"textcolor", L"#FFFF0000"}, {L"bordersize", L"2"}});
        label->SetAttribute(attribute, readable);
        EXPECT_EQ(At(1, 10), edge);
        EXPECT_EQ(At(10, 10), inside);
        label->SetAttribute(attribute, L"nonsense");
        EXPECT_EQ(At(1, 10), edgeAfter);
        EXPECT_EQ(At(10, 10), insideAfter);
        EXPECT_EQ(label->GetAttribute(attribute), L"nonsense");
        label->SetAttribute(attribute, readable);
        EXPECT_EQ(At(1, 10), edge);
        root->Remove(label);
    }
}

TEST_F(ControlPainterTest, CornersThatCannotBeReadAreSquareAndAPictureThatCannotBeReadIsNone) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,28,28"}, {L"bkcolor", L"#FFFF0000"}, {L"bkround", L"28,28"}});
    EXPECT_EQ(At(0, 0), kWhite);
    label->SetAttribute(L"bkround", L"28");
    EXPECT_EQ(At(0, 0), kRed);
    TemporaryFolder skin;
    CResourceManager::GetInstance()->SetSkinFolder(skin.Path());
    PaintSurface surface({28, 28});
    std::fill_n(surface.Pixels(), 28 * 28, kBlue);
    surface.SavePng(skin.Path() / "blue.png");
    label->SetAttribute(L"bkimage", L"file='blue.png'");
    EXPECT_EQ(At(14, 14), kBlue);
    label->SetAttribute(L"bkimage", L"blue.png");
    EXPECT_EQ(At(14, 14), kRed);
}

TEST_F(ControlPainterTest, ControlsOfOneElementLookAlikeUntilOneIsGivenALookOfItsOwn) {
    TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("x.xml", R"(<Window>
        <Label width="10" height="10" bkcolor="#FFFF0000" bordercolor="#FF0000FF"/></Window>)");
    CControlUI* built[2];
    for (int i : {0, 1}) {
        built[i] = CDialogBuilder().Create(file.wstring());
        built[i]->SetAttribute(L"padding", std::to_wstring(50 * i) + L",0,0,0");
        root->Add(built[i]);
    }
    EXPECT_EQ(At(5, 5), kRed);
    EXPECT_EQ(At(55, 5), kRed);
    built[1]->SetAttribute(L"bkcolor", L"#FF00FF00");
    built[1]->SetAttribute(L"bordersize", L"2");
    EXPECT_EQ(At(5, 5), kRed);
    EXPECT_EQ(At(0, 5), kRed);
    EXPECT_EQ(At(55, 5), kGreen);
    EXPECT_EQ(At(50, 5), kBlue) << "the rest of its look is still the file's";
}

// ---- Absurd sizes

TEST_F(ControlPainterTest, AControlOfAbsurdSizeIsPainted) {
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

TEST_F(ControlPainterTest, WindowsWithoutASizeOrAScaleAreSurvived) {
    Add<CButtonUI>({{L"text", L"x"}, {L"bkround", L"8,8"}, {L"bordersize", L"1"}});
    window.SetClientSize({0, 0});
    EXPECT_THAT(Repainted(), ::testing::IsEmpty());
    window.SetClientSize({10, 10});
    CResourceManager::GetInstance()->SetScale(0);
    EXPECT_THAT(Repainted(), ::testing::ElementsAre(CDuiRect{0, 0, 10, 10}));
}

}  // namespace DuiLib
