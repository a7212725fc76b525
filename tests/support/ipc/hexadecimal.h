#pragma once

#include <string>
#include <string_view>

namespace ipc_test {

inline std::string Hexadecimal(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string digits;
    for (const unsigned char byte : bytes) digits += {kDigits[byte >> 4], kDigits[byte & 15]};
    return digits;
}

inline std::string BytesOf(std::string_view digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
    }
    return bytes;
}

}  // namespace ipc_test
