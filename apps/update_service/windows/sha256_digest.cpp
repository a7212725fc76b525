#include <windows.h>
// The cryptography header needs the one before it.
#include <bcrypt.h>

#include <stdexcept>

#include "sha256.h"

namespace update_service {
namespace {

void Check(NTSTATUS status) {
    if (status < 0) throw std::runtime_error("SHA-256 is not to be had from the cryptography library");
}

}  // namespace

struct Sha256Digest::State {
    State() {
        Check(BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
        const NTSTATUS status = BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0);
        if (status < 0) BCryptCloseAlgorithmProvider(algorithm, 0);
        Check(status);
    }
    ~State() {
        BCryptDestroyHash(hash);
        BCryptCloseAlgorithmProvider(algorithm, 0);
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    BCRYPT_ALG_HANDLE algorithm = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;
};

Sha256Digest::Sha256Digest() : m_state(std::make_unique<State>()) {}

Sha256Digest::~Sha256Digest() = default;

void Sha256Digest::Add(const char* bytes, std::size_t size) {
    if (size == 0) return;
    auto* const begin = reinterpret_cast<unsigned char*>(const_cast<char*>(bytes));  // is only read
    Check(BCryptHashData(m_state->hash, begin, static_cast<ULONG>(size), 0));
}

std::array<unsigned char, 32> Sha256Digest::Finish() {
    std::array<unsigned char, 32> digest{};
    Check(BCryptFinishHash(m_state->hash, digest.data(), static_cast<ULONG>(digest.size()), 0));
    return digest;
}

}  // namespace update_service
