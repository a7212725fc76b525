#include "log.h"

#include <sstream>

#include "base/text.h"
#include "duilib/duilib.h"
#include "ipc_client/ipc_diagnostics.h"
#include "qx_logger/qx_logger.h"

namespace settings_host {

void OpenLog(const CommandLine& commandLine) {
    QxLogger::Options log;
    log.file = commandLine.logFile;
    log.console = !commandLine.quietLog;
    QxLogger::GetInstance()->Open(log);
    SetIpcLogSink(WriteLog);
    DuiLib::SetDiagnosticSink([](const std::string& line) { WriteLog(LOG_LEVEL_EVENT, line); });
}

void WriteLog(int level, const std::string& text) noexcept {
    try {
        std::wstringstream line;
        line << base::WideFromUtf8(text);
        QxLogger::GetInstance()->Log(static_cast<LOG_MESSAGE_LEVEL>(level), line);
    } catch (...) {
    }
}

void CloseLog() {
    QxLogger::Options nowhere;
    nowhere.console = false;
    QxLogger::GetInstance()->Open(nowhere);
}

}  // namespace settings_host
