#include "options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <stdexcept>

#include "base/file.h"

namespace update_service {
namespace {

// "KEY:PERCENT"; the key may hold colons itself.
std::pair<std::string, int> ReadFail(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    int percent = -1;
    if (colon != std::string::npos && colon > 0) {
        const char* const end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data() + colon + 1, end, percent);
        if (error != std::errc() || stop != end) percent = -1;
    }
    if (percent < 0 || percent > 100) {
        throw CLI::ValidationError("--fail", "\"" + text + "\" is not KEY:PERCENT with a percentage from 0 to 100");
    }
    return {text.substr(0, colon), percent};
}

// What is wrong with the text of a rate; empty when nothing is.
std::string RateFault(const std::string& text) {
    std::uint64_t rate = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, rate);
    return error == std::errc() && stop == end ? "" : "\"" + text + "\" is no number of bytes";
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(int argc, const char* const* argv, int& exitCode) {
    CommandLine result;
    std::string catalogue, workFolder, logFile;
    std::vector<std::string> fails;
    CLI::App app("Fetches and installs the updates of accessories, and serves the accessory page.", "update_service");
    app.add_option("--catalogue", catalogue, "The catalogue of accessories (JSON)")->required()->type_name("FILE");
    app.add_option("--work-dir", workFolder, "Folder for downloads and the service's state; made when missing")
        ->required()
        ->type_name("DIR");
    app.add_option("--rate", result.bytesPerSecond, "Limit of each download in bytes a second; 0 is none")
        ->check(RateFault)
        ->type_name("BYTES");
    app.add_option("--fail", fails, "Let the first download of KEY that gets to PERCENT fail; may be repeated")
        ->type_name("KEY:PERCENT")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option("--log-file", logFile, "Write the log to FILE too")->type_name("FILE");
    app.add_flag("--end-with-input", result.endWithInput, "End when the standard input ends, as on a signal");
    app.failure_message(
        [](const CLI::App*, const CLI::Error& error) { return std::string("update_service: ") + error.what() + "\n"; });
    try {
        app.parse(argc, argv);
        for (const std::string& fail : fails) result.failAt.insert(ReadFail(fail));
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error);
        return std::nullopt;
    }
    result.catalogue = base::PathFromUtf8(catalogue);
    result.workFolder = base::PathFromUtf8(workFolder);
    result.logFile = base::PathFromUtf8(logFile);
    return result;
}

void CheckFailKeys(const CommandLine& commandLine, const Catalogue& catalogue) {
    for (const auto& [key, percent] : commandLine.failAt) {
        if (Find(catalogue, key)) continue;
        throw std::runtime_error("--fail: " + base::Utf8FromPath(commandLine.catalogue) + " has no accessory \"" + key +
                                 "\"");
    }
}

}  // namespace update_service
