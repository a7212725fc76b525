// What a control looks like under the pointer, pressed, disabled, and with the keyboard's focus.
#include "support/toolkit/painting_test.h"

namespace DuiLib {

using ControlStatesTest = PaintingTest;

namespace {

// What is given in a state of a button: a look of its own, a text that cannot be read, or nothing.
constexpr int kNone = 0;
constexpr int kUnreadable = -1;

constexpr struct {
    int plain, hot, pushed;           // given: one of the colours below
    int expected, underIt, pressing;  // what is seen; none is the window's white
} kLooksOfStates[] = {
    {1, 2, 3, 1, 2, 3},
    {1, 2, kNone, 1, 2, 2},
    {1, kNone, 3, 1, 1, 3},
    {1, kNone, kNone, 1, 1, 1},
    {kNone, 2, kNone, kNone, 2, 2},
    {1, kUnreadable, kNone, 1, kNone, kNone},
    {1, 2, kUnreadable, 1, 2, kNone},
    {kUnreadable, kNone, 3, kNone, kNone, 3},
};
constexpr std::uint32_t kColors[] = {kWhite, 0xFF111111, 0xFF222222, 0xFF333333};
constexpr const wchar_t* kColorTexts[] = {L"", L"#FF111111", L"#FF222222", L"#FF333333"};
constexpr const wchar_t* kPictureTexts[] = {L"", L"file='1.png'", L"file='2.png'", L"file='3.png'"};

constexpr struct {
    const wchar_t* names[3];
    const wchar_t* const (&texts)[4];
} kKindsOfLooks[] = {
    {{L"bkcolor", L"hotbkcolor", L"pushedbkcolor"}, kColorTexts},
    {{L"normalimage", L"hotimage", L"pushedimage"}, kPictureTexts},
};

}  // namespace

class ButtonLooksTest : public PaintingTest {
protected:
    ButtonLooksTest() {
        CResourceManager::GetInstance()->SetSkinFolder(skin.Path());
        for (const int i : {1, 2, 3}) {
            PaintSurface surface({20, 20});
            std::fill_n(surface.Pixels(), 400, kColors[i]);
            surface.SavePng(skin.Path() / (std::to_string(i) + ".png"));
        }
    }

    TemporaryFolder skin;
};

TEST_F(ButtonLooksTest, AButtonShowsThatThePointerIsOverItAndThatItIsPressed) {
    for (const auto& [names, texts] : kKindsOfLooks) {
        for (const auto& [plain, hot, pushed, expected, underIt, pressing] : kLooksOfStates) {
            auto* const button = Add<CButtonUI>({{L"pos", L"0,0,20,20"}});
            const int given[] = {plain, hot, pushed};
            for (int i = 0; i < 3; ++i) {
                if (given[i] != kNone) button->SetAttribute(names[i], given[i] < 0 ? L"nonsense" : texts[given[i]]);
            }
            SCOPED_TRACE(::testing::PrintToString(std::wstring(names[0])) + " " + ::testing::PrintToString(given));
            EXPECT_EQ(At(5, 5), kColors[expected]);
            window.MouseMove({5, 5});
            EXPECT_EQ(At(5, 5), kColors[underIt]);
            window.ButtonDown({5, 5});
            EXPECT_EQ(At(5, 5), kColors[pressing]);
            window.MouseMove({50, 50});
            EXPECT_EQ(At(5, 5), kColors[expected]) << "drawn off";
            window.ButtonUp({50, 50});
            window.MouseMove({5, 5});
            EXPECT_EQ(At(5, 5), kColors[underIt]) << "let go";
            button->SetEnabled(false);
            if (names[0] == std::wstring_view(L"bkcolor")) {  // a picture is fainter then
                EXPECT_EQ(At(5, 5), kColors[expected]) << "disabled";
            }
            window.MouseLeave();
            root->Remove(button);
        }
    }
}

TEST_F(ButtonLooksTest, APictureOfADisabledControlIsAtFortyPercent) {
    for (const wchar_t* attribute : {L"bkimage", L"normalimage"}) {
        auto* const button = Add<CButtonUI>({{L"pos", L"0,0,20,20"}, {attribute, L"file='1.png'"}});
        EXPECT_EQ(At(5, 5), kColors[1]);
        button->SetEnabled(false);
        EXPECT_NEAR(At(5, 5) & 0xFF, 255 - 0.4 * (255 - 0x11), 2);
        root->Remove(button);
    }
}

TEST_F(ControlStatesTest, ALabelUnderAButtonIsHotWhileThePointerIsOverIt) {
    Add<CLabelUI>({{L"pos", L"0,0,20,20"}, {L"bkcolor", L"#FF111111"}, {L"hotbkcolor", L"#FF222222"}});
    Add<CButtonUI>({{L"pos", L"0,0,20,20"}});
    EXPECT_EQ(At(5, 5), 0xFF111111u);
    window.MouseMove({5, 5});
    EXPECT_EQ(At(5, 5), 0xFF222222u);
    window.MouseMove({25, 5});
    EXPECT_EQ(At(5, 5), 0xFF111111u);
}

TEST_F(ControlStatesTest, WhatComesUnderARestingPointerIsHot) {
    auto* const button = Add<CButtonUI>({{L"pos", L"0,0,20,20"}, {L"hotbkcolor", L"#FF222222"}});
    button->SetVisible(false);
    window.MouseMove({5, 5});
    EXPECT_EQ(At(5, 5), kWhite);
    button->SetVisible(true);
    EXPECT_EQ(At(5, 5), 0xFF222222u);
}

TEST_F(ControlStatesTest, WhatSomebodyElseLaidOutUnderThePointerIsHotToo) {
    auto* const button = Add<CButtonUI>({{L"hotbkcolor", L"#FF222222"}, {L"pos", L"100,0,120,20"}});
    window.MouseMove({5, 5});
    Repainted();
    button->SetAttribute(L"pos", L"0,0,20,20");
    button->GetPos();  // lays out
    EXPECT_EQ(At(5, 5), 0xFF222222u);
}

TEST_F(ControlStatesTest, AHotColourThatComesUnderThePointerIsShown) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,20,20"}});
    window.MouseMove({5, 5});
    Repainted();
    label->SetAttribute(L"hotbkcolor", L"#FF222222");
    EXPECT_EQ(At(5, 5), 0xFF222222u);
}

TEST_F(ControlStatesTest, WhatIsScrolledOutUnderThePointerIsNotHot) {
    auto* const view = Add<CScrollViewUI>({{L"pos", L"0,50,400,150"}});
    Add<CLabelUI>({{L"height", L"1000"}, {L"bkcolor", L"#FF111111"}, {L"hotbkcolor", L"#FF222222"}}, view);
    window.MouseMove({5, 5});
    view->ScrollTo(200, false);
    EXPECT_EQ(At(5, 60), 0xFF111111u);
}

TEST_F(ControlStatesTest, AButtonThatIsDisabledWhilePressedLosesThatLook) {
    auto* const button = Add<CButtonUI>({{L"pos", L"0,0,20,20"}, {L"pushedbkcolor", L"#FF333333"}});
    window.ButtonDown({5, 5});
    EXPECT_EQ(At(5, 5), 0xFF333333u);
    button->SetEnabled(false);
    EXPECT_EQ(At(5, 5), kWhite);
}

// ---- The ring around the focus

TEST_F(ControlStatesTest, TheFocusHasARingAfterTheKeyboardWasUsed) {
    auto* const button = Add<CButtonUI>({{L"pos", L"20,20,60,40"}});
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(At(40, 18), kFocusBlue);
    EXPECT_EQ(At(40, 30), kWhite);
    EXPECT_TRUE(Click(button));
    EXPECT_EQ(At(40, 18), kWhite);
    EXPECT_EQ(window.GetFocus(), button);
}

TEST_F(ControlStatesTest, TheRingIsTwoPixelsThickAndOneAway) {
    for (const int scale : {1, 2}) {
        CResourceManager::GetInstance()->SetScale(static_cast<unsigned>(100 * scale));
        auto* const button = Add<CButtonUI>({{L"pos", L"20,20,60,40"}});
        window.KeyDown(DuiKey::kTab);
        for (int away = 0; away < 5 * scale; ++away) {
            const std::uint32_t expected = away < scale || away >= 3 * scale ? kWhite : kFocusBlue;
            EXPECT_EQ(At(40 * scale, 20 * scale - 1 - away), expected) << "above, at " << scale << ": " << away;
            EXPECT_EQ(At(60 * scale + away, 30 * scale), expected) << "beside, at " << scale << ": " << away;
        }
        EXPECT_EQ(At(17 * scale, 17 * scale), kWhite) << "its corners are round";
        root->Remove(button);
    }
}

TEST_F(ControlStatesTest, TheFocusRingGoesWithTheContainerAroundItsButton) {
    auto* const box = Add<CContainerUI>({{L"pos", L"20,20,60,40"}});
    Add<CButtonUI>({}, box);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(At(40, 18), kFocusBlue);
    box->SetVisible(false);
    EXPECT_EQ(At(40, 18), kWhite);
}

}  // namespace DuiLib
