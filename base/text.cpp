#include "base/text.h"

#include <cstdio>

namespace base {
namespace {

constexpr char32_t kLastCodePoint = 0x10FFFF;

// What may follow a first byte. The limits of the second byte exclude overlong forms, surrogates and what is beyond
// U+10FFFF; later bytes are 80..BF.
struct Sequence {
    std::size_t size;  // 0: the byte cannot begin a character
    unsigned char secondLow;
    unsigned char secondHigh;
    char32_t firstBits;
};

Sequence SequenceOf(unsigned char first) {
    if (first < 0x80) return {1, 0, 0, first};
    if (first < 0xC2) return {0, 0, 0, 0};
    if (first < 0xE0) return {2, 0x80, 0xBF, first & 0x1Fu};
    if (first < 0xF0) {
        const unsigned char low = first == 0xE0 ? 0xA0 : 0x80;
        const unsigned char high = first == 0xED ? 0x9F : 0xBF;
        return {3, low, high, first & 0x0Fu};
    }
    if (first < 0xF5) {
        const unsigned char low = first == 0xF0 ? 0x90 : 0x80;
        const unsigned char high = first == 0xF4 ? 0x8F : 0xBF;
        return {4, low, high, first & 0x07u};
    }
    return {0, 0, 0, 0};
}

template <typename Unit>
void Append(std::basic_string<Unit>& text, char32_t character) {
    if (sizeof(Unit) == 4 || character <= 0xFFFF) {
        text += static_cast<Unit>(character);
        return;
    }
    text += static_cast<Unit>(0xD800 + ((character - 0x10000) >> 10));
    text += static_cast<Unit>(0xDC00 + ((character - 0x10000) & 0x3FF));
}

template <typename Unit>
std::basic_string<Unit> Decoded(std::string_view text) {
    std::basic_string<Unit> result;
    result.reserve(text.size());  // never more units than bytes
    while (!text.empty()) {
        const DecodedCharacter next = DecodeUtf8(text);
        Append(result, next.character);
        text.remove_prefix(next.size);
    }
    return result;
}

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

template <typename Unit>
char32_t Take(std::basic_string_view<Unit>& text) {
    const auto first = static_cast<char32_t>(text[0]);
    const auto second = text.size() > 1 ? static_cast<char32_t>(text[1]) : 0;
    const bool isPair = IsHighSurrogate(first) && IsLowSurrogate(second);
    text.remove_prefix(isPair ? 2 : 1);
    return isPair ? 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00) : first;
}

template <typename Unit>
std::string Encoded(std::basic_string_view<Unit> text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        char bytes[4];
        const std::size_t size = EncodeUtf8(Take(text), bytes);
        result.append(bytes, size);
    }
    return result;
}

bool EndsOrSteersALine(char32_t character) {
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
    return (isControl && character != U'\t') || character == 0x2028 || character == 0x2029;
}

std::string Escape(char32_t character) {
    if (character == U'\n') return "\\n";
    if (character == U'\r') return "\\r";
    char escape[16];
    std::snprintf(escape, sizeof escape, character < 0x80 ? "\\x%02X" : "\\u%04X", static_cast<unsigned>(character));
    return escape;
}

}  // namespace

DecodedCharacter DecodeUtf8(std::string_view text) {
    const Sequence sequence = SequenceOf(static_cast<unsigned char>(text[0]));
    if (sequence.size == 0) return {kReplacementCharacter, 1};
    char32_t character = sequence.firstBits;
    for (std::size_t i = 1; i < sequence.size; ++i) {
        if (i == text.size()) return {kReplacementCharacter, i};
        const unsigned char low = i == 1 ? sequence.secondLow : 0x80;
        const unsigned char high = i == 1 ? sequence.secondHigh : 0xBF;
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < low || byte > high) return {kReplacementCharacter, i};
        character = (character << 6) | (byte & 0x3Fu);
    }
    return {character, sequence.size};
}

std::size_t EncodeUtf8(char32_t character, char (&bytes)[4]) {
    if (character > kLastCodePoint || (character >= 0xD800 && character <= 0xDFFF)) character = kReplacementCharacter;
    const std::size_t size = character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    static constexpr unsigned char kMark[] = {0, 0x00, 0xC0, 0xE0, 0xF0};
    for (std::size_t i = size - 1; i > 0; --i) {
        bytes[i] = static_cast<char>(0x80 | (character & 0x3F));
        character >>= 6;
    }
    bytes[0] = static_cast<char>(kMark[size] | character);
    return size;
}

std::wstring WideFromUtf8(std::string_view text) { return Decoded<wchar_t>(text); }
std::u16string Utf16FromUtf8(std::string_view text) { return Decoded<char16_t>(text); }

std::u16string Utf16FromWide(std::wstring_view text) {
    std::u16string units;
    units.reserve(text.size());
    for (const wchar_t c : text) {
        const auto character = static_cast<char32_t>(c);
        Append(units, character > kLastCodePoint ? kReplacementCharacter : character);
    }
    return units;
}

std::string Utf8FromWide(std::wstring_view text) { return Encoded(text); }
std::string Utf8FromUtf16(std::u16string_view text) { return Encoded(text); }

std::string OneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter next = DecodeUtf8(text);
        if (EndsOrSteersALine(next.character)) {
            line += Escape(next.character);
        } else {
            line += text.substr(0, next.size);
        }
        text.remove_prefix(next.size);
    }
    return line;
}

char32_t TakeCharacter(std::wstring_view& text) { return Take(text); }

}  // namespace base
