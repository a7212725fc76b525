#include "message_trace.h"

#include <cctype>
#include <cstdio>
#include <string>

#include "ipc/message_table.h"
#include "ipc_client/ipc_trace.h"
#include "transcript.h"

namespace settings_host {

namespace {

constexpr std::size_t kShownBytes = 40;

std::string Name(const TagIPCMessageItem& item) {
    for (const IpcMessageDescriptor& known : kIpcMessages) {
        if (known.msgId == item.msgId && known.endpoint == item.destId) return known.name;
    }
    char id[16];
    std::snprintf(id, sizeof id, "0x%X", static_cast<unsigned>(item.msgId));
    return id;
}

// Printable bytes as they are, others as \xNN.
std::string Shown(const TagIPCMessageItem& item) {
    if (item.data == nullptr || item.dataLen <= 0) return "no payload";
    const auto size = static_cast<std::size_t>(item.dataLen);
    std::string text = std::to_string(size) + " bytes \"";
    for (std::size_t i = 0; i < size && i < kShownBytes; ++i) {
        const auto byte = static_cast<unsigned char>(item.data[i]);
        char hex[8];
        std::snprintf(hex, sizeof hex, std::isprint(byte) != 0 ? "%c" : "\\x%02X", byte);
        text += hex;
    }
    return text + (size > kShownBytes ? "...\"" : "\"");
}

}  // namespace

void TraceMessages() {
    SetIpcTrace([](IpcTraceEvent event, const TagIPCMessageItem& item) {
        char ends[64];
        std::snprintf(ends, sizeof ends, " 0x%X -> 0x%X ", static_cast<unsigned>(item.sourceId),
                      static_cast<unsigned>(item.destId));
        Say((event == IpcTraceEvent::kPosted ? "post" : "got ") + std::string(ends) + Name(item) + " " + Shown(item));
    });
}

}  // namespace settings_host
