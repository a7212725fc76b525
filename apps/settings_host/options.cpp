#include "options.h"

#include <CLI/CLI.hpp>

#include "base/file.h"
#include "module_loader/page_module.h"

namespace settings_host {

namespace {

// A build has it beside the programs' folder, a package beside the programs.
std::filesystem::path DefaultComponents() {
    const std::filesystem::path folder = base::ProgramFolder();
    const std::filesystem::path beside = folder / "components";
    std::error_code ignored;
    return std::filesystem::is_directory(beside, ignored) ? beside : folder.parent_path() / "components";
}

std::filesystem::path SampleBesideTheProgram() {
    const std::filesystem::path folder = base::ProgramFolder() / "sample";
    std::error_code ignored;
    return std::filesystem::is_directory(folder, ignored) ? folder : std::filesystem::path();
}

// An option that is a path; what it is so far is shown as its default.
CLI::Option* AddPath(CLI::App& app, const std::string& name, std::filesystem::path& path, const std::string& what) {
    const auto read = [&path](const std::string& text) { path = base::PathFromUtf8(text); };
    CLI::Option* const option = app.add_option_function<std::string>(name, read, what)->take_last();
    return path.empty() ? option : option->default_str(base::Utf8FromPath(path));
}

void AddOptions(CLI::App& app, CommandLine& line, bool& withoutSample) {
    app.add_flag("--headless", line.headless, "Without a window: the page is written as text");
    AddPath(app, "--module", line.module, "The accessory page's module");
    AddPath(app, "--components", line.components, "Folder that holds brindle/res");
    CLI::Option* const noSample =
        app.add_flag("--no-sample", withoutSample, "Do not take the folder sample beside the program");
    AddPath(app, "--sample", line.sample,
            "Serve this sample folder with an update service of its own; with --headless and no script, play "
            "its tour and check that every package arrives. Unless given, the folder sample beside the program, "
            "where there is one")
        ->excludes(noSample);
    AddPath(app, "--companions", line.companions, "Companion programs of accessories (JSON)");
    AddPath(app, "--script", line.script, "Click and wait as the file says; - is standard input");
    app.add_flag("--trace", line.trace, "Print every message in both directions");
    AddPath(app, "--screenshot", line.screenshot,
            "Paint the window into a PNG file once the page, or the script, has come to rest, and end");
    AddPath(app, "--pictures", line.pictures, "Folder for the pictures of scripts; the current one unless given");
    app.add_option("--language", line.language, "Language, for example de-DE; the locale's unless given")->take_last();
    app.add_option("--scale", line.scale, "Scale in percent; the display's unless given")
        ->check(CLI::Range(25, 500))
        ->take_last();
    app.add_option("--wait-percent", line.waitPercent,
                   "How long the page's own waits last, in percent: 1 for a quick demonstration; 100 unless given")
        ->check(CLI::Range(0, 1000000))
        ->take_last();
    AddPath(app, "--log-file", line.logFile, "Also write the log into a file");
    app.add_flag("--quiet-log", line.quietLog, "Do not write the log to standard error");
    AddPath(app, "--report-file", line.reportFile, "Append usage events to a file");
}

}  // namespace

std::optional<CommandLine> ReadCommandLine(int argc, const char* const* argv, int& exitCode) {
    CommandLine line;
    line.module = PageModule::DefaultPath();
    line.components = DefaultComponents();
    bool withoutSample = false;
    CLI::App app("A small settings application that shows the accessory update page.");
    AddOptions(app, line, withoutSample);
    app.failure_message(
        [](const CLI::App*, const CLI::Error& error) { return std::string("settings_host: ") + error.what() + "\n"; });
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error);
        return std::nullopt;
    }
    if (line.sample.empty() && !withoutSample) line.sample = SampleBesideTheProgram();
    line.tour = !line.sample.empty() && line.headless && line.script.empty();
    if (line.pictures.empty() && !line.tour) line.pictures = ".";
    return line;
}

}  // namespace settings_host
