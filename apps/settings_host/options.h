#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace settings_host {

struct CommandLine {
    std::filesystem::path module;      // the accessory page's module
    std::filesystem::path components;  // folder that holds brindle/res
    std::filesystem::path sample;      // folder that is served by a service of the host's own; empty: none
    std::filesystem::path companions;  // accessory update configuration; empty: none
    std::filesystem::path script;      // empty: none; "-": standard input
    std::filesystem::path screenshot;  // empty: none
    std::filesystem::path pictures;    // folder for the pictures of scripts; empty for the tour: one that goes with it
    std::filesystem::path logFile;     // empty: standard error only
    std::filesystem::path reportFile;  // empty: usage events are dropped
    std::string language;              // empty: the locale's
    std::optional<unsigned> scale;     // [percent] nothing: the display's, 100 without one
    unsigned waitPercent = 100;        // how long the page's own waits last
    bool tour = false;                 // plays the sample's tour and checks what has come of it
    bool headless = false;
    bool trace = false;
    bool quietLog = false;
};

// Reads the command line. When the program is to end at once (--help, or an error, which has been written to standard
// error), returns nothing and sets `exitCode`.
std::optional<CommandLine> ReadCommandLine(int argc, const char* const* argv, int& exitCode);

}  // namespace settings_host
