#include "diagnostics.h"

#include <cstdio>
#include <utility>

#include "base/sink_slot.h"

namespace {

// Neither is ever destroyed: connections of leaked clients may log, and clients post, while the process ends.
auto& LogSlot() {
    static auto& slot = *new base::SinkSlot<int, const std::string&>;
    return slot;
}

auto& TraceSlot() {
    static auto& slot = *new base::SinkSlot<IpcTraceEvent, const TagIPCMessageItem&>;
    return slot;
}

}  // namespace

void SetIpcLogSink(std::function<void(int level, const std::string& line)> sink) { LogSlot().Set(std::move(sink)); }

void SetIpcTrace(std::function<void(IpcTraceEvent event, const TagIPCMessageItem& item)> trace) {
    TraceSlot().Set(std::move(trace));
}

namespace ipc_client {

void Log(int level, const std::string& line) noexcept {
    if (!LogSlot().Tell(level, line)) std::fprintf(stderr, "ipc_client: %s\n", line.c_str());
}

void PeerLog::TellLeftOut(const std::string& process, std::size_t count) noexcept {
    LogIfPossible(kIpcLogEvent, [&] {
        return "broker: " + std::to_string(count) + " lines about " +
               (process.empty() ? "many other processes" : "process " + process) + " were left out";
    });
}

void Trace(IpcTraceEvent event, const TagIPCMessageItem& item) noexcept { TraceSlot().Tell(event, item); }

}  // namespace ipc_client
