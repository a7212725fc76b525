#include "sha256.h"

#include <fstream>
#include <stdexcept>
#include <vector>

#include "base/file.h"

namespace update_service {
namespace {

std::string Hex(const std::array<unsigned char, 32>& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) text += {kDigits[byte >> 4], kDigits[byte & 15]};
    return text;
}

}  // namespace

std::optional<std::string> Sha256OfFile(const std::filesystem::path& file, std::stop_token stop) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error(base::Utf8FromPath(file) + ": cannot be opened");
    Sha256Digest digest;
    std::vector<char> block(64 * 1024);
    while (stream) {
        if (stop.stop_requested()) return std::nullopt;
        stream.read(block.data(), static_cast<std::streamsize>(block.size()));
        digest.Add(block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad()) throw std::runtime_error(base::Utf8FromPath(file) + ": cannot be read");
    return Hex(digest.Finish());
}

}  // namespace update_service
