#include "foundation/text_utf8.h"

#include "kernel/code_pages.h"

namespace DuiLib {

std::wstring FromUtf8(std::string_view text) {
    std::wstring wide(text.size(), L'\0');  // never more characters than bytes
    const int size = static_cast<int>(text.size());
    wide.resize(kernel::MultiByteToWideChar(kernel::kCodePageUtf8, 0, text.data(), size, wide.data(), size));
    return wide;
}

std::string ToUtf8(std::wstring_view text) {
    std::string bytes(text.size() * 4, '\0');  // never more than four bytes a character
    bytes.resize(kernel::WideCharToMultiByte(kernel::kCodePageUtf8, 0, text.data(), static_cast<int>(text.size()),
                                             bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr));
    return bytes;
}

}  // namespace DuiLib
