#include "base/text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "text_case.h"

namespace base {
namespace {

std::u32string DecodeAll(std::string_view text) {
    std::u32string characters;
    while (!text.empty()) {
        const DecodedCharacter next = DecodeUtf8(text);
        characters += next.character;
        text.remove_prefix(next.size);
    }
    return characters;
}

std::string Encode(char32_t character) {
    char bytes[4];
    return std::string(bytes, EncodeUtf8(character, bytes));
}

TEST(Text, EveryCodePointSurvivesTheRoundTrip) {
    for (char32_t character = 0; character <= 0x10FFFF; ++character) {
        if (character >= 0xD800 && character <= 0xDFFF) continue;
        const std::string bytes = Encode(character);
        const DecodedCharacter back = DecodeUtf8(bytes);
        ASSERT_EQ(back.character, character);
        ASSERT_EQ(back.size, bytes.size());
    }
}

TEST(Text, LengthsChangeAtTheDocumentedCharacters) {
    EXPECT_EQ(Encode(0x7F), "\x7F");
    EXPECT_EQ(Encode(0x80), "\xC2\x80");
    EXPECT_EQ(Encode(0x7FF), "\xDF\xBF");
    EXPECT_EQ(Encode(0x800), "\xE0\xA0\x80");
    EXPECT_EQ(Encode(0xFFFF), "\xEF\xBF\xBF");
    EXPECT_EQ(Encode(0x10000), "\xF0\x90\x80\x80");
    EXPECT_EQ(Encode(0x10FFFF), "\xF4\x8F\xBF\xBF");
}

TEST(Text, WhatIsNoCharacterIsWrittenAsTheReplacementCharacter) {
    for (const char32_t bad : {0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(Encode(bad), "\xEF\xBF\xBD") << std::hex << static_cast<unsigned>(bad);
    }
}

TEST(Text, EachMaximalIllFormedSubpartGivesOneReplacementCharacter) {
    struct Case {
        const char* bytes;
        std::u32string expected;
    };
    const Case cases[] = {
        {"\x80", U"\uFFFD"},                                // a trailing byte alone
        {"\xBF\x41", U"\uFFFDA"},                           //
        {"\xC0\xAF", U"\uFFFD\uFFFD"},                      // overlong, two bytes
        {"\xC1\xBF", U"\uFFFD\uFFFD"},                      //
        {"\xE0\x80\xAF", U"\uFFFD\uFFFD\uFFFD"},            // overlong, three bytes
        {"\xE0\x9F\xBF", U"\uFFFD\uFFFD\uFFFD"},            //
        {"\xF0\x80\x80\xAF", U"\uFFFD\uFFFD\uFFFD\uFFFD"},  // overlong, four bytes
        {"\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD"},            // a surrogate
        {"\xED\x9F\xBF", U"\uD7FF"},                        // the last character before them
        {"\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond U+10FFFF
        {"\xF5\x80", U"\uFFFD\uFFFD"},                      //
        {"\xFF", U"\uFFFD"},                                //
        {"\xC2", U"\uFFFD"},                                // cut off at the end
        {"\xE4\xB8", U"\uFFFD"},                            //
        {"\xF0\x9F\x96", U"\uFFFD"},                        //
        {"\xE4\xB8\x41", U"\uFFFDA"},                       // cut off in the middle
        {"\xF0\x9F\x41\x42", U"\uFFFDAB"},                  //
        {"\xE4\xE4\xB8\xAD", U"\uFFFD\u4E2D"},              // a character begins inside another
        {"\xF1\x80\x80\xE1\x80\xC2\x41", U"\uFFFD\uFFFD\uFFFDA"},
    };
    for (const Case& c : cases) EXPECT_EQ(DecodeAll(c.bytes), c.expected) << testing::PrintToString(c.bytes);
}

// What a wide string holds for U+1F516.
const std::wstring kBookmark = sizeof(wchar_t) == 4 ? std::wstring(1, static_cast<wchar_t>(0x1F516)) : L"\xD83D\xDD16";

TEST(Text, GoesToWideStringsAndBack) {
    const std::string utf8("a\0\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x94\x96z", 12);
    const std::wstring wide = std::wstring(L"a\0\u00E9\u6F22", 4) + kBookmark + L"z";
    EXPECT_EQ(WideFromUtf8(utf8), wide);
    EXPECT_EQ(Utf8FromWide(wide), utf8);
    EXPECT_EQ(WideFromUtf8(""), L"");
    EXPECT_EQ(Utf8FromWide(L""), "");
}

TEST(Text, GoesToUtf16UnitsAndBack) {
    const std::string utf8("a\0\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x94\x96z", 12);
    const std::u16string units(u"a\0\u00E9\u6F22\xD83D\xDD16z", 7);
    EXPECT_EQ(Utf16FromUtf8(utf8), units);
    EXPECT_EQ(Utf8FromUtf16(units), utf8);
    EXPECT_EQ(Utf16FromWide(WideFromUtf8(utf8)), units);
}

TEST(Text, UnpairedSurrogatesOfAWideStringStayInUtf16) {
    EXPECT_EQ(Utf16FromWide(L"\xD83D\x41\xDD16"), u"\xD83D\x41\xDD16");
    EXPECT_EQ(Utf16FromWide(L"\xD83D\xDD16"), u"\xD83D\xDD16");
}

TEST(Text, IllFormedBytesBecomeReplacementCharactersInWideStringsToo) {
    EXPECT_EQ(WideFromUtf8("\xE4\xB8\x41\xED\xA0\x80"), L"\uFFFDA\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Utf16FromUtf8("\xF0\x9F\x41"), u"\uFFFDA");
}

TEST(Text, UnpairedSurrogatesBecomeReplacementCharactersAndPairsAreJoined) {
    struct Case {
        std::u16string units;
        const char* utf8;
    };
    const Case cases[] = {
        {u"\xD83D", "\xEF\xBF\xBD"},
        {u"\xDD16", "\xEF\xBF\xBD"},
        {u"\xD83D\x41", "\xEF\xBF\xBD\x41"},
        {u"\xDD16\xD83D", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {u"\xD83D\xD83D\xDD16", "\xEF\xBF\xBD\xF0\x9F\x94\x96"},
        {u"\xD800\xDC00\xDBFF\xDFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Utf8FromUtf16(c.units), c.utf8);
        EXPECT_EQ(Utf8FromWide(std::wstring(c.units.begin(), c.units.end())), c.utf8);
    }
}

TEST(Text, WhatIsNoCodePointInAWideStringBecomesTheReplacementCharacter) {
    if (sizeof(wchar_t) == 2) GTEST_SKIP() << "every unit is part of a code point here";
    EXPECT_EQ(Utf8FromWide(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8FromWide(std::wstring(1, static_cast<wchar_t>(-1))), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf16FromWide(std::wstring(1, static_cast<wchar_t>(-1))), u"\xFFFD");
}

TEST(Text, BecomesOneLineWithItsControlCharactersAsEscapes) {
    const test_support::TextCase cases[] = {
        {"", ""},
        {"C:\\new\tone \xC3\xA9\xE6\xBC\xA2\xF0\x9F\x94\x96", "C:\\new\tone \xC3\xA9\xE6\xBC\xA2\xF0\x9F\x94\x96"},
        {"one\r\ntwo\n", "one\\r\\ntwo\\n"},
        {std::string("\0\x1B[2J\x7F\b", 7), "\\x00\\x1B[2J\\x7F\\x08"},
        {"\xC2\x85\xC2\x9B\xC2\xA0", "\\u0085\\u009B\xC2\xA0"},
        {"\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xAA", "\\u2028\\u2029\xE2\x80\xAA"},
        {"\x85\x9B\xFF\xE4\xB8\n", "\x85\x9B\xFF\xE4\xB8\\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(OneLine(c.text), c.expected);
}

}  // namespace
}  // namespace base
