#include "host_output.h"

#include <cctype>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "base/mutex.h"
#include "base/text.h"
#include "channel_client.h"
#include "duilib/duilib.h"
#include "ipc_client/ipc_diagnostics.h"
#include "qx_logger/qx_logger.h"

namespace settings_host {

namespace {

constexpr std::size_t kShownBytes = 40;

std::string Name(const TagIPCMessageItem& item) {
    if (const channel::MessageInfo* const known = channel::FindMessage(item.msgId, item.destId)) return known->name;
    char id[16];
    std::snprintf(id, sizeof id, "0x%X", static_cast<unsigned>(item.msgId));
    return id;
}

// Printable bytes as they are, others as \xNN.
std::string Shown(std::string_view payload) {
    if (payload.empty()) return "no payload";
    std::string text = std::to_string(payload.size()) + " bytes \"";
    for (const char c : payload.substr(0, kShownBytes)) {
        const auto byte = static_cast<unsigned char>(c);
        char hex[8];
        std::snprintf(hex, sizeof hex, std::isprint(byte) != 0 ? "%c" : "\\x%02X", byte);
        text += hex;
    }
    return text + (payload.size() > kShownBytes ? "...\"" : "\"");
}

}  // namespace

void WriteTranscript(const std::string& line) {
    static base::Mutex mutex;
    const base::MutexLock lock(mutex);
    std::cout << base::OneLine(line) << std::endl;
}

void TraceMessages() {
    SetIpcTrace([](IpcTraceEvent event, const TagIPCMessageItem& item) {
        char ends[64];
        std::snprintf(ends, sizeof ends, " 0x%X -> 0x%X ", static_cast<unsigned>(item.sourceId),
                      static_cast<unsigned>(item.destId));
        WriteTranscript((event == IpcTraceEvent::kPosted ? "post" : "got ") + std::string(ends) + Name(item) + " " +
                        Shown(channel_client::PayloadBytes(item)));
    });
}

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
