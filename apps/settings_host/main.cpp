// settings_host: loads the accessory page's module, shows its page as text, and plays scripts on it.
#include <atomic>
#include <csignal>
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "accessory_update_config/accessory_update_config.h"
#include "duilib/diagnostics.h"
#include "host_channel.h"
#include "ipc_client/ipc_log.h"
#include "kernel/ui_turn.h"
#include "message_trace.h"
#include "options.h"
#include "page_text.h"
#include "page_window.h"
#include "qx_data_report/qx_data_report.h"
#include "qx_logger/qx_logger.h"
#include "script_runner.h"
#include "transcript.h"
#include "utf8.h"

namespace {

using namespace settings_host;

volatile std::sig_atomic_t stopAsked = 0;

constexpr auto kLookAgain = std::chrono::milliseconds(10);  // how often the page is looked at for changes

struct Stopped : std::exception {};

void LogLibraryLine(int level, const std::string& text) {
    std::wstringstream line;
    line << FromUtf8(text);
    QxLogger::GetInstance()->Log(static_cast<LOG_MESSAGE_LEVEL>(level), line);
}

void SetUpLibraries(const CommandLine& commandLine) {
    QxLogger::Options log;
    log.file = commandLine.logFile;
    log.console = !commandLine.quietLog;
    QxLogger::GetInstance()->Open(log);
    SetIpcLogSink(LogLibraryLine);
    DuiLib::SetDiagnosticSink([](const std::string& line) { LogLibraryLine(LOG_LEVEL_EVENT, line); });
    QxDataReport::Instance()->SetFile(commandLine.reportFile);
    if (!commandLine.companions.empty()) AccessoryUpdateConfig::Load(commandLine.companions);
    if (commandLine.trace) TraceMessages();

    const kernel::UiTurn turn;
    auto* const resources = DuiLib::CResourceManager::GetInstance();
    resources->SetScale(commandLine.scale);
    resources->SetResourceBase(commandLine.components / ".." / "bin");
    const auto languages = commandLine.components / "brindle" / "res" / "language";
    DuiLib::UICulture::GetInstance()->Load(languages / (commandLine.language + ".xml"));
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);) lines.push_back(line);
    return lines;
}

// Prints what is another than before: the changed lines of a page that has as many as before, else the whole page.
void ShowPage(PageWindow& window, std::vector<std::string>& shown) {
    std::vector<std::string> lines;
    {
        const kernel::UiTurn turn;
        window.ApplyContentHeight();
        lines = Lines(PageText(window));
    }
    if (lines == shown) return;
    const bool whole = lines.size() != shown.size();
    if (whole) Say(lines.empty() ? "page: (nothing is shown)" : "page:");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (whole || lines[i] != shown[i]) Say(lines[i]);
    }
    shown = lines;
}

void Run(const CommandLine& commandLine) {
    SetUpLibraries(commandLine);
    const PageModule module(commandLine.module);
    HostChannel channel;
    PageWindow window(module, channel);
    std::vector<std::string> shown;
    const auto idle = [&window, &shown] {
        if (stopAsked != 0) throw Stopped();
        ShowPage(window, shown);
        std::this_thread::sleep_for(kLookAgain);
    };
    window.Open();
    ScriptRunner runner(window, channel, idle);
    if (commandLine.script.empty()) {
        for (;;) idle();
    }
    const bool fromTerminal = commandLine.script == "-";
    std::ifstream file;
    if (!fromTerminal) {
        file.open(commandLine.script);
        if (!file) throw std::runtime_error(commandLine.script.string() + ": the script cannot be read");
    }
    script::Reader reader(fromTerminal ? std::cin : file, fromTerminal ? "standard input" : commandLine.script.string());
    for (bool ended = false; !ended;) {
        try {
            runner.Run(reader);
            ended = true;
        } catch (const script::Error& error) {
            if (!fromTerminal) throw;
            Say(error.what());  // a person tries again
        }
    }
    ShowPage(window, shown);
}

}  // namespace

int main(int argc, char** argv) {
    int exitCode = 0;
    const auto commandLine = settings_host::ReadCommandLine(argc, argv, exitCode);
    if (!commandLine) return exitCode;
    std::signal(SIGTERM, [](int) { stopAsked = 1; });
    std::signal(SIGINT, [](int) { stopAsked = 1; });
    try {
        Run(*commandLine);
    } catch (const Stopped&) {
        Say("stopped");
    } catch (const std::exception& error) {
        std::cerr << "settings_host: " << error.what() << std::endl;
        exitCode = 1;
    }
    SetIpcLogSink({});
    return exitCode;
}
