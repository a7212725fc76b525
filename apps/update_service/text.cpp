#include "text.h"

#include "kernel/code_pages.h"

namespace update_service {
namespace {

std::wstring Wide(unsigned codePage, const std::string& text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // no page has more characters than bytes
    const int length = kernel::MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), size);
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

std::string Narrow(unsigned codePage, const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    const auto convert = [&](char* to, int capacity) {
        return kernel::WideCharToMultiByte(codePage, 0, text.data(), size, to, capacity, nullptr, nullptr);
    };
    std::string narrow(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(narrow.data(), static_cast<int>(narrow.size()));
    return narrow;
}

}  // namespace

std::wstring WideFromUtf8(const std::string& text) { return Wide(kernel::kCodePageUtf8, text); }
std::string Utf8FromWide(const std::wstring& text) { return Narrow(kernel::kCodePageUtf8, text); }
std::string AnsiFromUtf8(const std::string& text) { return Narrow(kernel::kCodePageAnsi, WideFromUtf8(text)); }
std::string Utf8FromAnsi(const std::string& text) { return Utf8FromWide(Wide(kernel::kCodePageAnsi, text)); }

}  // namespace update_service
