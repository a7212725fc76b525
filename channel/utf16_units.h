#pragma once

#include <string>

// UTF-16 units inside wide strings, for both widths of wchar_t.

// The first half of the string's buffer is free, the second half holds size() UTF-16 units: spreads them over the whole
// and joins surrogate pairs, so the string may become shorter. Unpaired surrogates stay. Only for wchar_t of 32 bits.
void WidenUnitsInPlace(std::wstring& text);

// The UTF-16 units of a wide string.
std::u16string ToUtf16(const std::wstring& text);
