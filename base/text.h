#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Texts in UTF-8, in UTF-16 and in wide strings. A wide string holds code points where wchar_t has 32 bits and UTF-16
// units where it has 16. Nothing here fails: what means no character becomes U+FFFD. Zeros are characters like others.
// Any thread.
//
// Conversions to and from the system's code page are kernel/code_pages.h.
namespace base {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// Bytes that are not UTF-8 give one U+FFFD for each maximal ill-formed subpart: the longest beginning of a valid
// sequence, or a single byte.
std::wstring WideFromUtf8(std::string_view text);
std::u16string Utf16FromUtf8(std::string_view text);

// Unpaired surrogates stay; what is no code point becomes U+FFFD.
std::u16string Utf16FromWide(std::wstring_view text);

// Unpaired surrogates become U+FFFD, pairs are joined, also where a wide character has 32 bits.
std::string Utf8FromWide(std::wstring_view text);
std::string Utf8FromUtf16(std::u16string_view text);

// The text without what would end a line or steer a terminal: control characters but the tab, and the two separators of
// Unicode, become escapes, "\n", "\r", "\x1B" or "\u0085". All else stays, byte for byte, a backslash and bytes that
// are not UTF-8 too.
std::string OneLine(std::string_view text);

// One decoded piece of narrow text: the character and how many bytes it took (at least 1).
struct DecodedCharacter {
    char32_t character;
    std::size_t size;
};

// Decodes what `text` (not empty) begins with.
DecodedCharacter DecodeUtf8(std::string_view text);

// Writes the character's UTF-8 to `bytes` and returns its length. A surrogate, or what is no code point, is written as
// U+FFFD.
std::size_t EncodeUtf8(char32_t character, char (&bytes)[4]);

// Takes one character from the beginning of `text` (not empty). A pair of surrogates is one; an unpaired one stays what
// it is.
char32_t TakeCharacter(std::wstring_view& text);

}  // namespace base
