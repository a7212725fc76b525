#pragma once

#include <string>
#include <string_view>

#include "kernel/code_pages.h"

// Whole texts in the process's ANSI page: conversions that fail give an empty text.
namespace kernel {

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
