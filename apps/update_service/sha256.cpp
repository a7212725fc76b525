#include "sha256.h"

#include <openssl/evp.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace update_service {
namespace {

using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

std::string Hex(const unsigned char* bytes, unsigned size) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (unsigned i = 0; i < size; ++i) text += {kDigits[bytes[i] >> 4], kDigits[bytes[i] & 15]};
    return text;
}

void Check(int success) {
    if (success != 1) throw std::runtime_error("SHA-256 is not to be had from the cryptography library");
}

}  // namespace

std::optional<std::string> Sha256OfFile(const std::filesystem::path& file, std::stop_token stop) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error(file.string() + ": cannot be opened");
    const Context context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    Check(EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr));
    std::vector<char> block(64 * 1024);
    while (stream) {
        if (stop.stop_requested()) return std::nullopt;
        stream.read(block.data(), static_cast<std::streamsize>(block.size()));
        Check(EVP_DigestUpdate(context.get(), block.data(), static_cast<std::size_t>(stream.gcount())));
    }
    if (stream.bad()) throw std::runtime_error(file.string() + ": cannot be read");
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    Check(EVP_DigestFinal_ex(context.get(), digest, &size));
    return Hex(digest, size);
}

}  // namespace update_service
