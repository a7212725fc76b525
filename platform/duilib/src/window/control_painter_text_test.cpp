// What a control's text looks like in the window's picture, with the system's own letters.
#include "support/toolkit/painting_test.h"

namespace DuiLib {

class TextPaintingTest : public PaintingTest {
protected:
    TextPaintingTest() { CRenderEngine::SetTextMeasurer(nullptr); }
    ~TextPaintingTest() override { UICulture::GetInstance()->Clear(); }

    // The smallest rectangle around what is not white in the window's first 40 rows; empty when all is.
    CDuiRect Ink(int from = 0, int to = 400) {
        window.Paint(picture);
        CDuiRect ink{to, 40, from, 0};
        for (int x = from; x < to; ++x) {
            for (int y = 0; y < 40; ++y) {
                if (picture.Pixel(x, y) == kWhite) continue;
                ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                       std::max(ink.bottom, y + 1)};
            }
        }
        return ink.left < ink.right ? ink : CDuiRect{};
    }

    // The colour of the letters: of the pixel in the middle row that is furthest from white.
    std::uint32_t InkColor() {
        window.Paint(picture);
        const auto light = [](std::uint32_t pixel) {
            return (pixel >> 16 & 0xFF) + (pixel >> 8 & 0xFF) + (pixel & 0xFF);
        };
        std::uint32_t darkest = kWhite;
        for (int x = 0; x < 60; ++x) {
            if (light(picture.Pixel(x, 30)) < light(darkest)) darkest = picture.Pixel(x, 30);
        }
        return darkest;
    }
};

TEST_F(TextPaintingTest, TextStandsWhereItsAlignmentSays) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,300,40"}, {L"text", L"Update"}});
    EXPECT_LT(Ink().right, 100);
    label->SetAttribute(L"align", L"center");
    EXPECT_NEAR((Ink().left + Ink().right) / 2, 150, 2);
    label->SetAttribute(L"align", L"right");
    EXPECT_GT(Ink().left, 200);
}

TEST_F(TextPaintingTest, LeftIsWhereReadingStarts) {
    TemporaryFolder folder;
    UICulture::GetInstance()->Load(folder.Write("rtl.xml", "<Language name='xx' rtl='true'/>"));
    window.SetClientSize({300, 40});
    Add<CLabelUI>({{L"text", L"Update"}});
    EXPECT_GT(Ink(0, 300).left, 200);
}

TEST_F(TextPaintingTest, TextPaddingIsLeftFree) {
    Add<CLabelUI>({{L"pos", L"0,0,300,40"}, {L"textpadding", L"40,0,0,0"}, {L"text", L"Update"}});
    EXPECT_GE(Ink().left, 40);
}

TEST_F(TextPaintingTest, TextThatDoesNotFitIsCutAtTheControlsEdge) {
    Add<CLabelUI>({{L"pos", L"0,0,50,40"}, {L"text", L"WWWWWWWWWWWWWWWWWWWW"}});
    EXPECT_EQ(Ink().right, 50);
}

TEST_F(TextPaintingTest, TextThatDoesNotFitEndsInAnEllipsisWhereThatIsAskedFor) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,60,40"}, {L"text", L"WWWWWWWWWWWWWWWWWWWW"}});
    const CDuiRect letters = Ink();
    label->SetAttribute(L"endellipsis", L"true");
    const CDuiRect ink = Ink();
    EXPECT_LE(ink.right, 60);
    EXPECT_EQ(ink.top, letters.top) << "there are letters before it";
    const CDuiRect dots = Ink(ink.right - 4);
    EXPECT_GT(dots.top, (letters.top + letters.bottom) / 2) << "nothing but dots at the end";
    label->SetText(L"W");
    EXPECT_EQ(Ink(Ink().right - 4).top, letters.top) << "none where the text fits";
}

namespace {

constexpr struct {
    const wchar_t* attribute;
    const wchar_t* value;
    bool hot, enabled;
    std::uint32_t expected;
} kTextColors[] = {
    {L"hottextcolor", L"#FF0000FF", false, true, kRed},
    {L"hottextcolor", L"#FF0000FF", true, true, kBlue},
    {L"hottextcolor", L"nonsense", true, true, kRed},
    {L"hottextcolor", L"#FF0000FF", true, false, 0xFFFF9999},  // red at 40 percent
    {L"disabledtextcolor", L"#FF0000FF", true, true, kRed},
    {L"disabledtextcolor", L"#FF0000FF", false, false, kBlue},  // as it is, not faded
    {L"disabledtextcolor", L"nonsense", false, false, 0xFFFF9999},
};

}  // namespace

TEST_F(TextPaintingTest, TheTextHasTheColourOfItsControlsState) {
    for (const auto& [attribute, value, hot, enabled, expected] : kTextColors) {
        auto* const label = Add<CLabelUI>(
            {{L"pos", L"0,0,60,60"}, {L"text", L"████"}, {L"textcolor", L"#FFFF0000"}, {attribute, value}});
        label->SetEnabled(enabled);
        if (hot) window.MouseMove({10, 10});
        const std::uint32_t color = InkColor();
        for (const int shift : {0, 8, 16}) {
            EXPECT_NEAR(static_cast<int>(color >> shift & 0xFF), static_cast<int>(expected >> shift & 0xFF), 2)
                << ::testing::PrintToString(std::wstring(attribute)) << (hot ? " hot" : "")
                << (enabled ? "" : " disabled") << std::hex << ", " << color << " for " << expected;
        }
        window.MouseLeave();
        root->Remove(label);
    }
}

}  // namespace DuiLib
