#include "support/text.h"

#include <gtest/gtest.h>

#include "ansi_page.h"

namespace {

using namespace std::string_literals;

TEST(Text, EmptyInputGivesEmptyOutput) {
    EXPECT_EQ(AnsiToWide(""), L"");
    EXPECT_EQ(WideToAnsi(L""), "");
    EXPECT_EQ(Utf8ToWide(""), L"");
}

TEST(Text, ANarrowStringConvertsPastAnEmbeddedZero) {
    EXPECT_EQ(AnsiToWide("a\0b"s), L"a\0b"s);
    EXPECT_EQ(Utf8ToWide("a\0b"s), L"a\0b"s);
    EXPECT_EQ(WideToAnsi(L"a\0b"s), "a\0b"s);
}

TEST(Text, TheAnsiPageDecides) {
    const AnsiPage page(1252);
    EXPECT_EQ(AnsiToWide("\xE9"), L"\u00e9");
    EXPECT_EQ(WideToAnsi(L"\u00e9"), "\xE9");
    EXPECT_EQ(Utf8ToWide("\xC3\xA9"), L"\u00e9");
}

TEST(Text, CharactersThatThePageLacksBecomeItsDefaultCharacter) {
    const AnsiPage page(1252);
    EXPECT_EQ(WideToAnsi(L"a\u4e2db"), "a?b");
}

TEST(Text, ReplaceFirstFillsTheFirstPlaceholderAlone) {
    EXPECT_EQ(ReplaceFirst(L"Hello {0}, {0}", L"X", L"{0}"), L"Hello X, {0}");
}

TEST(Text, ReplaceFirstWithoutThePatternGivesAnEmptyText) {
    EXPECT_EQ(ReplaceFirst(L"Hello", L"X", L"{0}"), L"");
    EXPECT_EQ(ReplaceFirst(L"", L"X", L"{0}"), L"");
}

TEST(Text, BindTextWrapsTheIdWithoutEscaping) { EXPECT_EQ(BindText(L"IDS_'X"), L"bind='IDS_'X'"); }

}  // namespace
