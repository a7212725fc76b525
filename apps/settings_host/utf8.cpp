#include "utf8.h"

#include "kernel/code_pages.h"

namespace settings_host {

std::string ToUtf8(std::wstring_view text) {
    const auto convert = [&text](char* to, int capacity) {
        return kernel::WideCharToMultiByte(kernel::kCodePageUtf8, 0, text.data(), static_cast<int>(text.size()), to,
                                           capacity, nullptr, nullptr);
    };
    std::string utf8(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(utf8.data(), static_cast<int>(utf8.size()));
    return utf8;
}

std::wstring FromUtf8(std::string_view text) {
    const auto convert = [&text](wchar_t* to, int capacity) {
        return kernel::MultiByteToWideChar(kernel::kCodePageUtf8, 0, text.data(), static_cast<int>(text.size()), to,
                                           capacity);
    };
    std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
    convert(wide.data(), static_cast<int>(wide.size()));
    return wide;
}

}  // namespace settings_host
