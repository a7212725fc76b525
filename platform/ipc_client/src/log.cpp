#include "log.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

namespace {

using Sink = std::function<void(int, const std::string&)>;

struct SinkSlot {
    std::mutex mutex;
    std::shared_ptr<const Sink> sink;  // null: standard error
};

// Never destroyed: connections of leaked clients may log while the process ends.
SinkSlot& Slot() {
    static SinkSlot& slot = *new SinkSlot;
    return slot;
}

}  // namespace

void SetIpcLogSink(Sink sink) {
    auto shared = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
    SinkSlot& slot = Slot();
    const std::lock_guard lock(slot.mutex);
    slot.sink.swap(shared);
}

namespace ipc_client {

void Log(int level, const std::string& line) noexcept {
    try {
        SinkSlot& slot = Slot();
        std::unique_lock lock(slot.mutex);
        const std::shared_ptr<const Sink> sink = slot.sink;
        lock.unlock();
        if (sink) {
            (*sink)(level, line);
        } else {
            std::fprintf(stderr, "ipc_client: %s\n", line.c_str());
        }
    } catch (...) {
    }
}

}  // namespace ipc_client
