#include "drawing/windows/text_lines.h"

#include "drawing/windows/gdiplus_library.h"
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {
namespace {

const FontDescription kFont;

TextLines Wrapped(std::wstring_view text, int width) { return SetText({text, kFont, 100, width, true}); }
TextLines Cut(std::wstring_view text, int width) { return SetText({text, kFont, 100, width, false, true}); }

TEST(GdiplusText, LinesAreBrokenBetweenWordsAndNothingIsLost) {
    const TextLines lines = Wrapped(L"several words that do not fit on one line", 100);
    ASSERT_GT(lines.lines.size(), 2u);
    std::wstring joined;
    for (const TextLine& line : lines.lines) {
        EXPECT_LE(line.width, 100);
        joined += (joined.empty() ? L"" : L" ") + line.text;
    }
    EXPECT_EQ(joined, L"several words that do not fit on one line");
}

TEST(GdiplusText, AWordThatIsTooLongIsBrokenWithinAndNothingIsLost) {
    const std::wstring word = L"abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz";
    std::wstring joined;
    for (const TextLine& line : Wrapped(word, 60).lines) joined += line.text;
    EXPECT_EQ(joined, word);
}

TEST(GdiplusText, ALineIsNeverShorterThanACharacter) {
    EXPECT_EQ(Wrapped(L"abc", 1).lines.size(), 3u);
    EXPECT_EQ(Wrapped(L"\U0001F600\U0001F600", 1).lines.size(), 2u) << "pairs stay together";
}

TEST(GdiplusText, ATextThatIsCutEndsInAnEllipsisWithinTheWidth) {
    const TextLines lines = Cut(L"a text that is too long for its place", 100);
    ASSERT_EQ(lines.lines.size(), 1u);
    EXPECT_TRUE(lines.lines[0].text.ends_with(L'\u2026'));
    EXPECT_TRUE(lines.lines[0].text.starts_with(L"a text"));
    EXPECT_LE(lines.lines[0].width, 100);
    EXPECT_EQ(Cut(L"short", 100).lines[0].text, L"short");
}

TEST(GdiplusText, AFamilyThatIsMissingIsReplaced) {
    const SystemFont& font = FindFont({"No Such Family", 14, false}, 100, L"text");
    EXPECT_TRUE(font.font->IsAvailable());
    EXPECT_GT(font.lineHeight, 10);
    EXPECT_GT(SetText({L"text", {"No Such Family", 14, false}, 100}).Size().cx, 10);
}

std::wstring FamilyFor(std::wstring_view text) {
    Gdiplus::FontFamily family;
    FindFont(kFont, 100, text).font->GetFamily(&family);
    wchar_t name[LF_FACESIZE] = {};
    family.GetFamilyName(name);
    return name;
}

TEST(GdiplusText, LettersThatTheFamilyLacksAreSetInOneThatHasThem) {
    for (const wchar_t* const text : {L"\u66f4\u65b0 2.4", L"\u30a2\u30c3\u30d7", L"\u062a\u062d\u062f\u064a\u062b"}) {
        EXPECT_TRUE(HasLetters(FamilyFor(text), text)) << testing::PrintToString(text);
    }
    EXPECT_EQ(FamilyFor(L"Update\u2026"), FamilyFor(L"text"));
}

TEST(GdiplusText, ALetterThatNoFamilyHasIsLeftToTheWantedOne) {
    EXPECT_EQ(FamilyFor(L"\uE0FF\uE1FE"), FamilyFor(L"text"));
}

TEST(FontCoverage, BlanksAndMarksNeedNoLetters) {
    EXPECT_TRUE(HasLetters(FamilyFor(L"text"), L" \t\u200E\u200F\u202B\uFEFF"));
    EXPECT_TRUE(HasLetters(FamilyFor(L"text"), L""));
}

}  // namespace
}  // namespace DuiLib
