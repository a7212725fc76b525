#pragma once

#include <array>
#include <cstddef>
#include <memory>

namespace update_service {

// SHA-256 of bytes that come in pieces, from the system's cryptography library. Everything throws std::runtime_error
// when that has none.
class Sha256Digest {
public:
    Sha256Digest();
    ~Sha256Digest();

    void Add(const char* bytes, std::size_t size);
    std::array<unsigned char, 32> Finish();  // once, last

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace update_service
