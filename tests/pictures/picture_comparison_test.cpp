// What counts as the same picture.
#include "picture_comparison.h"

#include <gtest/gtest.h>

#include "duilib/duilib.h"
#include "picture_fonts.h"

namespace {

using namespace DuiLib;

constexpr CDuiSize kPage{624, 1200};  // [device px] the size of a page's picture

// A picture of a page's size with one text in it.
PaintSurface Painted(const wchar_t* text, unsigned scale = 100) {
    CResourceManager::GetInstance()->SetScale(scale);
    auto* const label = new CLabelUI;
    label->SetText(text);
    label->SetAttribute(L"bkcolor", L"#FFFFFFFF");
    CPaintManagerUI manager;
    manager.AttachRoot(label);
    manager.SetClientSize(CResourceManager::GetInstance()->Scale(kPage));
    PaintSurface picture;
    manager.Paint(picture);
    CResourceManager::GetInstance()->SetScale(100);
    return picture;
}

void ChangeRed(PaintSurface& picture, std::int64_t from, std::int64_t count, std::uint32_t levels) {
    for (std::int64_t i = from; i < from + count; ++i) picture.Pixels()[i] -= levels << 16;
}

TEST(Comparison, APictureIsEqualToItself) {
    const PictureDifference difference = Compare(Painted(L"37%"), Painted(L"37%"));
    EXPECT_TRUE(difference.equal);
    EXPECT_EQ(difference.pixelsOff, 0);
    EXPECT_EQ(difference.mostLevels, 0);
}

TEST(Comparison, AFewLevelsEverywhereAreEqual) {
    PaintSurface off = Painted(L"");
    ChangeRed(off, 0, std::int64_t{kPage.cx} * kPage.cy, kLevels);
    const PictureDifference difference = Compare(Painted(L""), off);
    EXPECT_TRUE(difference.equal);
    EXPECT_EQ(difference.mostLevels, kLevels);
}

TEST(Comparison, OneLevelMoreInAsManyPixelsAsALineHasIsNotEqual) {
    PaintSurface off = Painted(L"");
    ChangeRed(off, 0, kPage.cx, kLevels + 1);
    const PictureDifference difference = Compare(Painted(L""), off);
    EXPECT_FALSE(difference.equal);
    EXPECT_EQ(difference.pixelsOff, kPage.cx);
    EXPECT_EQ(difference.Words(), "624 pixels differ, by up to 3 levels");
}

TEST(Comparison, ATinyShareOfThePixelsMayBeFurtherOff) {
    constexpr std::int64_t kAllowed = kPixelsOff * kPage.cx * kPage.cy / 1'000'000;
    PaintSurface off = Painted(L"");
    ChangeRed(off, 0, kAllowed, 200);
    EXPECT_TRUE(Compare(Painted(L""), off).equal);
    ChangeRed(off, kAllowed, 1, 200);
    EXPECT_FALSE(Compare(Painted(L""), off).equal);
}

TEST(Comparison, OneOtherGlyphOnAWholePageIsNotEqualAtAnyScale) {
    ASSERT_EQ(WhatFontsLack(), "");
    for (const unsigned scale : {100u, 125u, 150u, 200u, 300u}) {
        EXPECT_FALSE(Compare(Painted(L"37%", scale), Painted(L"39%", scale)).equal) << scale;
        EXPECT_FALSE(Compare(Painted(L"Update", scale), Painted(L"Updato", scale)).equal) << scale;
    }
}

TEST(Comparison, AnotherSizeIsNotEqual) {
    const PaintSurface lower({kPage.cx, kPage.cy - 1});
    const PictureDifference difference = Compare(PaintSurface(kPage), lower);
    EXPECT_FALSE(difference.equal);
    EXPECT_EQ(difference.Words(), "the sizes differ");
}

TEST(Comparison, TheDifferenceIsDrawnInRed) {
    constexpr std::uint32_t kWhite = 0xFFFFFFFF, kRed = 0xFFE00000;
    PaintSurface expected({3, 2}), actual({2, 3});
    for (int i = 0; i < 6; ++i) expected.Pixels()[i] = actual.Pixels()[i] = kWhite;
    actual.Pixels()[1] = 0xFF000000;
    const PaintSurface drawn = DrawDifference(expected, actual);
    const std::uint32_t rows[] = {kWhite, kRed, kRed, kWhite, kWhite, kRed, kRed, kRed, kRed};
    ASSERT_EQ(drawn.Size().cx * drawn.Size().cy, 9);
    for (int i = 0; i < 9; ++i) EXPECT_EQ(drawn.Pixels()[i], rows[i]) << i;
}

}  // namespace
