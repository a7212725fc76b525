#include "transcript.h"

#include <cctype>
#include <cstdio>
#include <iostream>
#include <mutex>

#include "channel_client.h"
#include "ipc_client/ipc_diagnostics.h"

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
    static std::mutex mutex;
    const std::lock_guard<std::mutex> guard(mutex);
    std::cout << line << std::endl;
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

}  // namespace settings_host
