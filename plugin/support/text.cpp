#include "support/text.h"

#include "kernel/code_pages.h"

namespace {

std::wstring ToWide(unsigned codePage, const std::string& text) {
    const int length = static_cast<int>(text.size());
    const int needed = kernel::MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    if (needed <= 0) return {};
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    kernel::MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), needed);
    return wide;
}

}  // namespace

std::wstring AnsiToWide(const std::string& text) { return ToWide(kernel::kCodePageAnsi, text); }

std::wstring Utf8ToWide(const std::string& text) { return ToWide(kernel::kCodePageUtf8, text); }

std::string WideToAnsi(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int needed =
        kernel::WideCharToMultiByte(kernel::kCodePageAnsi, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0) return {};
    std::string narrow(static_cast<std::size_t>(needed), '\0');
    kernel::WideCharToMultiByte(kernel::kCodePageAnsi, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
    return narrow;
}

std::wstring ReplaceFirst(const std::wstring& source, const std::wstring& value, const std::wstring& pattern) {
    std::wstring result = source;
    const std::size_t found = result.find(pattern, 0);
    if (found == std::wstring::npos) return {};  // not the source: callers rely on it
    result.replace(found, pattern.size(), value);
    return result;
}

std::wstring BindText(const std::wstring& resourceId) { return L"bind='" + resourceId + L"'"; }
