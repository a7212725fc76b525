#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "kernel/export.h"

// Text conversion between narrow code pages and wide strings, as Windows does it with flags 0. On Windows the system's
// own functions are called with what is given here, whatever it is; elsewhere this library converts.
//
// Both functions: `length` is explicit (no terminator is looked for, embedded zeros are converted); a destination
// capacity of 0 asks for the needed length and writes nothing. The result is the number of characters or bytes, or 0
// for an empty source, an unknown code page, or a destination that is too small (what fits may have been written).
// Outside Windows it is also 0 for flags other than 0 and for a length below zero; on Windows these mean what the
// system makes of them (-1: up to the terminator, and with it). Any thread.
namespace kernel {

inline constexpr unsigned kCodePageAnsi = 0;      // CP_ACP: the process's ANSI page
inline constexpr unsigned kCodePageUtf8 = 65001;  // CP_UTF8

// Invalid bytes become the page's default character; in UTF-8 one U+FFFD for each maximal ill-formed subpart. The bytes
// that 1252 and its relatives leave free between 80 and 9F are the control characters of those numbers. Where wchar_t
// has 32 bits, a character beyond the basic plane is one wide character.
KERNEL_API int MultiByteToWideChar(unsigned codePage, std::uint32_t flags, const char* source, int length,
                                   wchar_t* destination, int capacity);

// Characters that the page lacks become the page's default character ('?'), two of them beyond the basic plane, which
// takes two UTF-16 units. Windows first looks for a similar character ("best fit": 1252 has no U+0100, and an A is
// taken). Elsewhere that is left out: which characters are similar is a table of that system, one for each page, which
// no other system carries, and one made up here would be wrong in ways that nobody sees. `defaultCharacter` and
// `usedDefaultCharacter` are null, as the module passes them; outside Windows the result is 0 otherwise. Unpaired
// surrogates become U+FFFD in UTF-8; pairs are joined.
KERNEL_API int WideCharToMultiByte(unsigned codePage, std::uint32_t flags, const wchar_t* source, int length,
                                   char* destination, int capacity, const char* defaultCharacter,
                                   bool* usedDefaultCharacter);

// Chooses the page that kCodePageAnsi stands for in this process: 65001 (the default where the system has no code
// pages), 1252 or 936, or any page of one- or two-byte characters that the system converts. Returns false, and changes
// nothing, for any other. Any thread. Not on Windows, where
// the system decides: true there for the page that it is already.
KERNEL_API bool SetAnsiCodePage(unsigned codePage);

// ---- Whole texts in the process's ANSI page: conversions that fail give an empty text

inline std::wstring WideFromAnsi(std::string_view text) {
    const auto length = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // no page has more characters than bytes
    wide.resize(
        static_cast<std::size_t>(MultiByteToWideChar(kCodePageAnsi, 0, text.data(), length, wide.data(), length)));
    return wide;
}

inline std::string AnsiFromWide(std::wstring_view text) {
    const auto convert = [text](char* to, std::size_t capacity) {
        return static_cast<std::size_t>(WideCharToMultiByte(kCodePageAnsi, 0, text.data(),
                                                            static_cast<int>(text.size()), to,
                                                            static_cast<int>(capacity), nullptr, nullptr));
    };
    std::string narrow(convert(nullptr, 0), '\0');
    convert(narrow.data(), narrow.size());
    return narrow;
}

}  // namespace kernel
