#include "kernel/code_pages.h"

#include <gtest/gtest.h>
#if defined(_WIN32)
#include <windows.h>
#endif

#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace kernel {
namespace {

using namespace std::string_literals;

std::wstring Wide(unsigned page, const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(page, 0, text.data(), size, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(needed), L'\0');
    EXPECT_EQ(MultiByteToWideChar(page, 0, text.data(), size, result.data(), needed), needed);
    return result;
}

std::string Narrow(unsigned page, const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    const int needed = WideCharToMultiByte(page, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(needed), '\0');
    EXPECT_EQ(WideCharToMultiByte(page, 0, text.data(), size, result.data(), needed, nullptr, nullptr), needed);
    return result;
}

#if defined(_WIN32)
TEST(AnsiPage, IsTheSystemsAndStays) {
    const unsigned page = GetACP();
    EXPECT_TRUE(SetAnsiCodePage(page));
    for (const unsigned other : {1252u, 936u, kCodePageUtf8, kCodePageAnsi, 4711u}) {
        EXPECT_EQ(SetAnsiCodePage(other), other == page) << other;
    }
    EXPECT_EQ(Narrow(kCodePageAnsi, L"a\u00E9\u6F22"), Narrow(page, L"a\u00E9\u6F22"));
    EXPECT_EQ(Wide(kCodePageAnsi, "\xC3\xA9"), Wide(page, "\xC3\xA9"));
}
#else
// Leaves the process with the page that it started with.
class AnsiPage : public testing::Test {
protected:
    ~AnsiPage() override { SetAnsiCodePage(kCodePageUtf8); }
};
#endif

TEST(CodePages, Utf8TextBecomesOneWideCharacterACodePoint) {
    EXPECT_EQ(Wide(kCodePageUtf8, "a\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x96\xB1"), L"a\u00E9\u6F22\U0001F5B1");
    EXPECT_EQ(Narrow(kCodePageUtf8, L"a\u00E9\u6F22\U0001F5B1"), "a\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x96\xB1");
}

TEST(CodePages, InvalidUtf8BecomesReplacementCharacters) {
    EXPECT_EQ(Wide(kCodePageUtf8, "a\xE4\xB8z\xFF"), L"a\uFFFDz\uFFFD");
}

TEST(CodePages, UnpairedSurrogatesBecomeReplacementCharactersAndPairsAreJoined) {
    const std::wstring high(1, wchar_t{0xD83D});
    const std::wstring low(1, wchar_t{0xDDB1});
    EXPECT_EQ(Narrow(kCodePageUtf8, high + L"a" + low),
              "\xEF\xBF\xBD"
              "a"
              "\xEF\xBF\xBD");
    EXPECT_EQ(Narrow(kCodePageUtf8, low + high), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(Narrow(kCodePageUtf8, high + low), "\xF0\x9F\x96\xB1");
}

TEST(CodePages, EmbeddedZerosAreConverted) {
    for (const unsigned page : {kCodePageUtf8, 1252u, 936u}) {
        EXPECT_EQ(Wide(page, "a\0b\0"s), L"a\0b\0"s);
        EXPECT_EQ(Narrow(page, L"a\0b\0"s), "a\0b\0"s);
    }
}

TEST(CodePages, ADestinationThatIsTooSmallGivesZero) {
    wchar_t wide[2];
    char narrow[3];
    EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 0, "abc", 3, wide, 2), 0);
    EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 0, "abc", 2, wide, 2), 2);
    EXPECT_EQ(WideCharToMultiByte(kCodePageUtf8, 0, L"a\u6F22", 2, narrow, 3, nullptr, nullptr), 0);
    EXPECT_EQ(WideCharToMultiByte(kCodePageUtf8, 0, L"\u6F22", 1, narrow, 3, nullptr, nullptr), 3);
}

TEST(CodePages, OnlyTheGivenLengthIsReadAndWritten) {
    wchar_t wide[4] = {L'-', L'-', L'-', L'-'};
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 2, wide, 4), 2);
    EXPECT_EQ(std::wstring(wide, 4), L"ab--");
    char narrow[4] = {'-', '-', '-', '-'};
    EXPECT_EQ(WideCharToMultiByte(1252, 0, L"abc", 2, narrow, 4, nullptr, nullptr), 2);
    EXPECT_EQ(std::string(narrow, 4), "ab--");
}

TEST(CodePages, WhatCannotBeConvertedAtAllGivesZero) {
    wchar_t wide[4];
    char narrow[4];
    EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 0, "abc", 0, wide, 4), 0);
    EXPECT_EQ(WideCharToMultiByte(kCodePageUtf8, 0, L"abc", 0, narrow, 4, nullptr, nullptr), 0);
    EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 0, "abc", 3, wide, -1), 0);
    EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 0, "abc", 3, nullptr, 4), 0);
    EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 0, nullptr, 3, wide, 4), 0);
    EXPECT_EQ(WideCharToMultiByte(kCodePageUtf8, 0, nullptr, 3, narrow, 4, nullptr, nullptr), 0);
#if defined(_WIN32)
    const std::vector<unsigned> unknownPages = {7, 1200, 99999, 0xFFFFFFFF};  // the system has more pages
#else
    const std::vector<unsigned> unknownPages = {1, 7, 1200, 54936, 65000, 99999, 0xFFFFFFFF};
#endif
    for (const unsigned unknown : unknownPages) {
        EXPECT_EQ(MultiByteToWideChar(unknown, 0, "abc", 3, wide, 4), 0) << unknown;
        EXPECT_EQ(WideCharToMultiByte(unknown, 0, L"abc", 3, narrow, 4, nullptr, nullptr), 0) << unknown;
    }
}

#if defined(_WIN32)
TEST(CodePages, ALengthBelowZeroMeansWhatTheSystemMakesOfIt) {
    wchar_t wide[4];
    char narrow[4];
    EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 0, "abc", -1, wide, 4), 4);
    EXPECT_EQ(std::wstring(wide, 4), L"abc\0"s);
    EXPECT_EQ(WideCharToMultiByte(kCodePageUtf8, 0, L"abc", -1, narrow, 4, nullptr, nullptr), 4);
    EXPECT_EQ(std::string(narrow, 4), "abc\0"s);
}
#else
TEST(CodePages, WhatOnlyWindowsKnowsGivesZero) {
    wchar_t wide[4];
    char narrow[4];
    for (const int length : {-1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 0, "abc", length, wide, 4), 0);
        EXPECT_EQ(WideCharToMultiByte(kCodePageUtf8, 0, L"abc", length, narrow, 4, nullptr, nullptr), 0);
    }
    EXPECT_EQ(MultiByteToWideChar(kCodePageUtf8, 8, "abc", 3, wide, 4), 0);
    EXPECT_EQ(WideCharToMultiByte(kCodePageUtf8, 1, L"abc", 3, narrow, 4, nullptr, nullptr), 0);
    EXPECT_EQ(WideCharToMultiByte(1252, 0, L"abc", 3, narrow, 4, "!", nullptr), 0);
}

TEST(CodePages, NoSimilarCharacterIsLookedFor) {
    EXPECT_EQ(Narrow(1252, L"\u0100\uFF21\u2212"), "???");
    EXPECT_EQ(Narrow(936, L"\u00C0\u00A9"), "??");
}
#endif

// Beside Latin-1: what 1252 has between 80 and 9F. The five bytes without a character are controls of that number.
TEST(CodePages, Page1252HasItsOwnCharactersBetween80And9F) {
    struct Case {
        unsigned char byte;
        wchar_t character;
    };
    const Case cases[] = {
        {0x80, 0x20AC}, {0x81, 0x0081}, {0x82, 0x201A}, {0x83, 0x0192}, {0x84, 0x201E}, {0x85, 0x2026}, {0x86, 0x2020},
        {0x87, 0x2021}, {0x88, 0x02C6}, {0x89, 0x2030}, {0x8A, 0x0160}, {0x8B, 0x2039}, {0x8C, 0x0152}, {0x8D, 0x008D},
        {0x8E, 0x017D}, {0x8F, 0x008F}, {0x90, 0x0090}, {0x91, 0x2018}, {0x92, 0x2019}, {0x93, 0x201C}, {0x94, 0x201D},
        {0x95, 0x2022}, {0x96, 0x2013}, {0x97, 0x2014}, {0x98, 0x02DC}, {0x99, 0x2122}, {0x9A, 0x0161}, {0x9B, 0x203A},
        {0x9C, 0x0153}, {0x9D, 0x009D}, {0x9E, 0x017E}, {0x9F, 0x0178}, {0xA0, 0x00A0}, {0xE9, 0x00E9}, {0xFF, 0x00FF},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Wide(1252, std::string(1, static_cast<char>(c.byte))), std::wstring(1, c.character)) << int{c.byte};
        EXPECT_EQ(Narrow(1252, std::wstring(1, c.character)), std::string(1, static_cast<char>(c.byte))) << int{c.byte};
    }
}

TEST(CodePages, EveryByteOf1252SurvivesTheRoundTrip) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    EXPECT_EQ(Wide(1252, bytes).size(), 256u);
    EXPECT_EQ(Narrow(1252, Wide(1252, bytes)), bytes);
}

TEST(CodePages, CharactersThatAPageLacksBecomeQuestionMarks) {
    struct Case {
        unsigned page;
        std::wstring text;
        const char* expected;
    };
    const Case cases[] = {
        {1252, L"a\u6F22z", "a?z"},
        {1252, L"\u0080", "?"},          // the control character gave its place to the euro
        {1252, L"\U0001F5B1!", "?\?!"},  // two UTF-16 units
        {1252, std::wstring(1, wchar_t{0xD83D}), "?"},
        {936, L"\u00E9", "\xA8\xA6"},  // has it
        {936, L"\u00EB", "?"},         // lacks it
        {936, L"\U0001F5B1\u5B57", "??\xD7\xD6"},
    };
    for (const Case& c : cases) EXPECT_EQ(Narrow(c.page, c.text), c.expected);
}

TEST(CodePages, Page936HasOneAndTwoByteCharacters) {
    struct Case {
        const char* bytes;
        std::wstring text;
    };
    const Case cases[] = {
        {"Az~", L"Az~"},
        {"\x80", L"\u20AC"},
        {"\xD6\xD0\xCE\xC4", L"\u4E2D\u6587"},
        {"\x81\x40", L"\u4E02"},  // the first pair
        {"\xB1\xCA-01", L"\u7B14-01"},
        {"\xA1\xA4\xA1\xAA", L"\u00B7\u2014"},
        {"\xC5\x5C", L"\u81F7"},  // a second byte that is a backslash
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Wide(936, c.bytes), c.text) << testing::PrintToString(c.bytes);
        EXPECT_EQ(Narrow(936, c.text), c.bytes) << testing::PrintToString(c.bytes);
    }
}

TEST(CodePages, PairsWithoutMeaningBecomeOneDefaultCharacter) {
    EXPECT_EQ(Wide(936, "\xD6"), L"?");          // a lead byte at the end
    EXPECT_EQ(Wide(936, "\xD6\0a"s), L"?\0a"s);  // before a zero
    EXPECT_EQ(Wide(936, "\xD6\x20z"), L"?z");    // before what cannot follow it
#if !defined(_WIN32)                             // where the byte is a private character
    EXPECT_EQ(Wide(936, "\xFF"), L"?");
#endif
    EXPECT_EQ(Wide(932, "\x81\x20z"), L"\u30FBz");  // this page has another one
}

TEST(CodePages, OtherPagesOfTheSystemAreConverted) {
    EXPECT_EQ(Wide(1251, "\xCF\xE5\xF0\xEE"), L"\u041F\u0435\u0440\u043E");
    EXPECT_EQ(Narrow(1251, L"\u041F\u0435\u0440\u043E"), "\xCF\xE5\xF0\xEE");
    EXPECT_EQ(Wide(932, "\xB1\x83\x79\x83\x93"), L"\uFF71\u30DA\u30F3");
    EXPECT_EQ(Narrow(932, L"\uFF71\u30DA\u30F3"), "\xB1\x83\x79\x83\x93");
    EXPECT_EQ(Wide(949, "\xC6\xE6"), L"\uD39C");
    EXPECT_EQ(Wide(950, "\xB5\xA7"), L"\u7B46");
    EXPECT_EQ(Wide(1258, "e"), L"e");  // held back by the converter in case an accent follows
}

#if !defined(_WIN32)
TEST_F(AnsiPage, IsUtf8AtFirst) { EXPECT_EQ(Wide(kCodePageAnsi, "\xC3\xA9"), L"\u00E9"); }

TEST_F(AnsiPage, CanBeChosen) {
    EXPECT_TRUE(SetAnsiCodePage(1252));
    EXPECT_EQ(Wide(kCodePageAnsi, "\xE9"), L"\u00E9");
    EXPECT_EQ(Narrow(kCodePageAnsi, L"\u00E9\u6F22"), "\xE9?");
    EXPECT_TRUE(SetAnsiCodePage(936));
    EXPECT_EQ(Narrow(kCodePageAnsi, L"\u6F22"), "\x9D\x68");
    EXPECT_EQ(Wide(kCodePageUtf8, "\xC3\xA9"), L"\u00E9");  // not the other page's business
}

TEST_F(AnsiPage, DecidesOnWholeTexts) {
    EXPECT_TRUE(SetAnsiCodePage(1252));
    EXPECT_EQ(WideFromAnsi("\xE9\0b"s), L"\u00E9\0b"s);
    EXPECT_EQ(AnsiFromWide(L"\u00E9\0\u6F22"s), "\xE9\0?"s);
    EXPECT_TRUE(SetAnsiCodePage(936));
    EXPECT_EQ(WideFromAnsi("\x9D\x68z"), L"\u6F22z");
    EXPECT_EQ(AnsiFromWide(L"\u6F22z"), "\x9D\x68z");
}

TEST_F(AnsiPage, StaysWhenTheNewOneIsUnknown) {
    EXPECT_TRUE(SetAnsiCodePage(1252));
    EXPECT_FALSE(SetAnsiCodePage(4711));
    EXPECT_FALSE(SetAnsiCodePage(kCodePageAnsi));
    EXPECT_EQ(Narrow(kCodePageAnsi, L"\u00E9"), "\xE9");
}
#endif

TEST(CodePages, WholeTextsKeepTheirZerosAndMayBeEmpty) {
    EXPECT_EQ(WideFromAnsi("a\0b"s), L"a\0b"s);
    EXPECT_EQ(AnsiFromWide(L"a\0b"s), "a\0b"s);
    EXPECT_EQ(WideFromAnsi(""), L"");
    EXPECT_EQ(AnsiFromWide(L""), "");
}

TEST(CodePages, ThreadsMayAskForAPageAtTheSameTime) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int turn = 0; turn < 100; ++turn) EXPECT_EQ(Wide(1250, "\xE8"), L"\u010D");
        });
    }
}

}  // namespace
}  // namespace kernel
