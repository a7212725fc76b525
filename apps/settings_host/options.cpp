#include "options.h"

#include <CLI/CLI.hpp>

#include "duilib/resource_manager.h"
#include "module_loader/page_module.h"

namespace settings_host {

std::optional<CommandLine> ReadCommandLine(int argc, const char* const* argv, int& exitCode) {
    CommandLine line;
    line.pictures = ".";
    line.module = PageModule::DefaultPath();
    line.components = DuiLib::CResourceManager::GetInstance()->Resolve(L"../components").lexically_normal();
    CLI::App app("A small settings application that shows the accessory update page.");
    app.add_flag("--headless", line.headless, "Without a window: the page is written as text");
    app.add_option("--module", line.module, "The accessory page's module")->capture_default_str();
    app.add_option("--components", line.components, "Folder that holds brindle/res")->capture_default_str();
    app.add_option("--companions", line.companions, "Companion programs of accessories (JSON)");
    app.add_option("--script", line.script, "Click and wait as the file says; - is standard input")->take_last();
    app.add_flag("--trace", line.trace, "Print every message in both directions");
    app.add_option("--screenshot", line.screenshot,
                   "Paint the window into a PNG file once the page, or the script, has come to rest, and end");
    app.add_option("--pictures", line.pictures, "Folder for the pictures of scripts")
        ->capture_default_str()
        ->take_last();
    app.add_option("--language", line.language, "Language, for example de-DE; the locale's unless given")->take_last();
    app.add_option("--scale", line.scale, "Scale in percent; the display's unless given")
        ->check(CLI::Range(25, 500))
        ->take_last();
    app.add_option("--log-file", line.logFile, "Also write the log into a file");
    app.add_flag("--quiet-log", line.quietLog, "Do not write the log to standard error");
    app.add_option("--report-file", line.reportFile, "Append usage events to a file");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error);
        return std::nullopt;
    }
    return line;
}

}  // namespace settings_host
