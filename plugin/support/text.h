#pragma once

#include <string>

// Conversions and templates of the page's texts. None reports an error: what cannot be converted gives an empty text.

// Narrow text of the system's ANSI code page to wide text, and back. Embedded zeros are kept; characters that the page
// lacks come out as its default character.
std::wstring AnsiToWide(const std::string& text);
std::string WideToAnsi(const std::wstring& text);

std::wstring Utf8ToWide(const std::string& text);

// `source` with the first `pattern` in it replaced by `value`. Empty when the pattern is not there: a template without
// its placeholder gives no text at all, on purpose.
std::wstring ReplaceFirst(const std::wstring& source, const std::wstring& value, const std::wstring& pattern);

// The toolkit's reference to a resource text: bind='ID'.
std::wstring BindText(const std::wstring& resourceId);
