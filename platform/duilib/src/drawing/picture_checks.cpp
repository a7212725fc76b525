#include "drawing/picture_checks.h"

#include <fstream>
#include <stdexcept>

namespace DuiLib {

namespace {

constexpr std::uint64_t kMaxPicturePixels = 64'000'000;
constexpr std::uintmax_t kMaxFileSize = 64 << 20;  // [bytes]

}  // namespace

void CheckPictureFile(const std::filesystem::path& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found) throw std::runtime_error("there is no such file");
    if (error) throw std::runtime_error(error.message());
    if (!std::filesystem::is_regular_file(status)) throw std::runtime_error("it is no file");
    if (std::filesystem::file_size(file) > kMaxFileSize) throw std::runtime_error("the file is too large");
}

// Width and height stand at the beginning of every PNG file, in the 16th to the 23rd byte.
void CheckPngSize(const std::filesystem::path& file) {
    unsigned char head[24] = {};
    std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(head), sizeof head);
    const auto number = [&head](int at) {
        return std::uint64_t{head[at]} << 24 | std::uint64_t{head[at + 1]} << 16 | std::uint64_t{head[at + 2]} << 8 |
               head[at + 3];
    };
    if (number(16) * number(20) > kMaxPicturePixels) throw std::runtime_error("the picture is too large");
}

}  // namespace DuiLib
