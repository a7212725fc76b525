#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace update_service {

// The file's SHA-256 in lower-case hexadecimal digits; nothing when `stop` was requested meanwhile. Throws
// std::runtime_error that names the file when it cannot be read.
std::optional<std::string> Sha256OfFile(const std::filesystem::path& file, std::stop_token stop = {});

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
