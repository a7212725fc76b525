#pragma once

#include <cstddef>
#include <string_view>

namespace kernel {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// One decoded piece of narrow text: the character and how many bytes it took (at least 1).
struct DecodedCharacter {
    char32_t character;
    std::size_t size;
};

// Decodes what `text` (not empty) begins with. Bytes that are not UTF-8 give one U+FFFD for each maximal ill-formed
// subpart: the longest beginning of a valid sequence, or a single byte.
DecodedCharacter DecodeUtf8(std::string_view text);

// Writes the character's UTF-8 to `bytes` and returns its length. A surrogate, or what is no code point, is written as
// U+FFFD.
std::size_t EncodeUtf8(char32_t character, char (&bytes)[4]);

}  // namespace kernel
