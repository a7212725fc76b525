#include "utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kernel {
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

TEST(Utf8, EveryCodePointSurvivesTheRoundTrip) {
    for (char32_t character = 0; character <= 0x10FFFF; ++character) {
        if (character >= 0xD800 && character <= 0xDFFF) continue;
        const std::string bytes = Encode(character);
        const DecodedCharacter back = DecodeUtf8(bytes);
        ASSERT_EQ(back.character, character);
        ASSERT_EQ(back.size, bytes.size());
    }
}

TEST(Utf8, LengthsChangeAtTheDocumentedCharacters) {
    EXPECT_EQ(Encode(0x7F), "\x7F");
    EXPECT_EQ(Encode(0x80), "\xC2\x80");
    EXPECT_EQ(Encode(0x7FF), "\xDF\xBF");
    EXPECT_EQ(Encode(0x800), "\xE0\xA0\x80");
    EXPECT_EQ(Encode(0xFFFF), "\xEF\xBF\xBF");
    EXPECT_EQ(Encode(0x10000), "\xF0\x90\x80\x80");
    EXPECT_EQ(Encode(0x10FFFF), "\xF4\x8F\xBF\xBF");
}

TEST(Utf8, WhatIsNoCharacterIsWrittenAsTheReplacementCharacter) {
    for (const char32_t bad : {0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(Encode(bad), "\xEF\xBF\xBD") << std::hex << static_cast<unsigned>(bad);
    }
}

TEST(Utf8, EachMaximalIllFormedSubpartGivesOneReplacementCharacter) {
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

}  // namespace
}  // namespace kernel
