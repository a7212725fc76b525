// settings_host: a small settings application. It loads the accessory page's module, shows its page in a window, or as
// text, and plays scripts on it.
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "accessory_update_config/accessory_update_config.h"
#include "base/process.h"
#include "base/reason.h"
#include "base/text.h"
#include "duilib/duilib.h"
#include "host_output.h"
#include "host_program.h"
#include "ipc_client/ipc_diagnostics.h"
#include "kernel/ui_turn.h"
#include "language_choice.h"
#include "options.h"
#include "qx_data_report/qx_data_report.h"
#include "sample.h"
#include "script_runner.h"

namespace {

using namespace settings_host;

// Without a display scripts and pictures work all the same; whoever wants to see a window is told why there is none.
void ChooseDisplay(CommandLine& commandLine) {
    std::string reason;
    if (commandLine.headless || DuiLib::CWindowWnd::HasDisplay(reason)) return;
    const bool plays = !commandLine.script.empty() && commandLine.script != "-";
    if (!plays && commandLine.screenshot.empty()) {
        throw std::runtime_error(reason + " (--headless shows the page as text)");
    }
    commandLine.headless = true;
}

void LoadLanguage(const std::filesystem::path& folder, const std::string& wanted) {
    const std::string language =
        wanted.empty() ? ChooseLanguage(AvailableLanguages(folder), base::SystemLocale()) : wanted;
    DuiLib::UICulture::GetInstance()->Load(folder / (language + ".xml"));
}

// Prepares what the page and the host share: log, usage report, companions, scale, resources, language. Throws
// std::runtime_error, naming the file and the reason.
void SetUp(const CommandLine& commandLine) {
    OpenLog(commandLine);
    QxDataReport::Instance()->SetFile(commandLine.reportFile);
    if (!commandLine.companions.empty()) AccessoryUpdateConfig::Load(commandLine.companions);
    if (commandLine.waitPercent != 100) SetWaitPercent(commandLine.waitPercent);
    if (commandLine.trace) TraceMessages();

    const kernel::UiTurn turn;
    auto* const resources = DuiLib::CResourceManager::GetInstance();
    const std::filesystem::path skin = commandLine.components / "brindle" / "res";
    resources->SetScale(commandLine.scale.value_or(100));
    resources->SetResourceBase(commandLine.components / ".." / "bin");
    resources->SetSkinFolder(skin);
    resources->SetFallbackPicture(skin / "drawable/Brindle/fallback.svg");
    LoadLanguage(skin / "language", commandLine.language);
}

void Run(CommandLine& commandLine, std::optional<Sample>& sample) {
    ChooseDisplay(commandLine);
    if (!commandLine.sample.empty()) sample.emplace(commandLine);
    SetUp(commandLine);
    HostProgram program(commandLine);
    if (sample) sample->StartService();
    program.Run();
    if (commandLine.tour) sample->CheckTour(program.NothingIsLeft());
}

int RunToTheEnd(CommandLine& commandLine) {
    std::optional<Sample> sample;
    int exitCode = 0;
    try {
        Run(commandLine, sample);
    } catch (const Ended& ended) {
        if (!ended.reason.empty()) WriteTranscript(ended.reason);
        if (commandLine.tour) exitCode = 1;
    } catch (const std::exception& error) {
        std::cerr << "settings_host: " << base::OneLine(base::Reason(error)) << std::endl;
        exitCode = 1;
    }
    SetIpcLogSink({});
    if (!sample) return exitCode;
    SetIpcLogSink([](int, const std::string&) {});  // that the service ends is no news
    CloseLog();
    sample->End(exitCode == 0);
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    base::HoldStopSignals();
    const base::Arguments arguments(argc, argv);
    int exitCode = 0;
    auto commandLine = ReadCommandLine(arguments.Count(), arguments.Values(), exitCode);
    if (!commandLine) return exitCode;
    std::thread([] {
        for (;;) {
            base::WaitForStopSignal();
            HostProgram::AskToStop();
        }
    }).detach();  // lives as long as the process
    return RunToTheEnd(*commandLine);
}
