#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "catalogue.h"

namespace update_service {

struct CommandLine {
    std::filesystem::path catalogue;
    std::filesystem::path workFolder;
    std::filesystem::path logFile;     // empty: standard error only
    std::uint64_t bytesPerSecond = 0;  // 0: no limit
    bool endWithInput = false;
    std::map<std::string, int> failAt;  // [percent] by device key
};

// Reads the command line. When the program is to end at once (--help, or an error, which has been written to standard
// error), returns nothing and sets `exitCode`.
std::optional<CommandLine> ReadCommandLine(int argc, const char* const* argv, int& exitCode);

// Throws std::runtime_error when --fail names an accessory that the catalogue does not have.
void CheckFailKeys(const CommandLine& commandLine, const Catalogue& catalogue);

}  // namespace update_service
