#pragma once

#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>

namespace update_service {

// The file's SHA-256 in lower-case hexadecimal digits; nothing when `stop` was requested meanwhile. Throws
// std::runtime_error that names the file when it cannot be read.
std::optional<std::string> Sha256OfFile(const std::filesystem::path& file, std::stop_token stop = {});

}  // namespace update_service
