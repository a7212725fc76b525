#include "libraries.h"

#include <sstream>

#include "accessory_update_config/accessory_update_config.h"
#include "duilib/duilib.h"
#include "ipc_client/ipc_log.h"
#include "kernel/ui_turn.h"
#include "language_choice.h"
#include "log.h"
#include "message_trace.h"
#include "page_waits.h"
#include "qx_data_report/qx_data_report.h"

namespace settings_host {

namespace {

void OpenLog(const CommandLine& commandLine) {
    QxLogger::Options log;
    log.file = commandLine.logFile;
    log.console = !commandLine.quietLog;
    QxLogger::GetInstance()->Open(log);
    SetIpcLogSink(LogLibraryLine);
    DuiLib::SetDiagnosticSink([](const std::string& line) { LogLibraryLine(LOG_LEVEL_EVENT, line); });
}

void LoadLanguage(const std::filesystem::path& folder, const std::string& wanted) {
    const std::string language = wanted.empty() ? ChooseLanguage(AvailableLanguages(folder), SystemLocale()) : wanted;
    DuiLib::UICulture::GetInstance()->Load(folder / (language + ".xml"));
}

}  // namespace

void CloseLog() {
    QxLogger::Options nowhere;
    nowhere.console = false;
    QxLogger::GetInstance()->Open(nowhere);
}

void SetUpLibraries(const CommandLine& commandLine) {
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

}  // namespace settings_host
