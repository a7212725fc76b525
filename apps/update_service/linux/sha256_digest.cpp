#include <openssl/evp.h>

#include <stdexcept>

#include "sha256.h"

namespace update_service {
namespace {

void Check(int success) {
    if (success != 1) throw std::runtime_error("SHA-256 is not to be had from the cryptography library");
}

}  // namespace

struct Sha256Digest::State {
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), EVP_MD_CTX_free};
};

Sha256Digest::Sha256Digest() : m_state(std::make_unique<State>()) {
    Check(EVP_DigestInit_ex(m_state->context.get(), EVP_sha256(), nullptr));
}

Sha256Digest::~Sha256Digest() = default;

void Sha256Digest::Add(const char* bytes, std::size_t size) {
    Check(EVP_DigestUpdate(m_state->context.get(), bytes, size));
}

std::array<unsigned char, 32> Sha256Digest::Finish() {
    std::array<unsigned char, 32> digest{};
    Check(EVP_DigestFinal_ex(m_state->context.get(), digest.data(), nullptr));
    return digest;
}

}  // namespace update_service
