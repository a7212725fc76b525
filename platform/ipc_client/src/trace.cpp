#include "trace.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace {

using Function = std::function<void(IpcTraceEvent, const TagIPCMessageItem&)>;

struct TraceSlot {
    std::atomic<bool> used{false};  // spares the lock while nobody traces
    std::mutex mutex;
    std::shared_ptr<const Function> function;
};

// Never destroyed: clients may post while the process ends.
TraceSlot& Slot() {
    static TraceSlot& slot = *new TraceSlot;
    return slot;
}

}  // namespace

void SetIpcTrace(Function trace) {
    auto shared = trace ? std::make_shared<const Function>(std::move(trace)) : nullptr;
    TraceSlot& slot = Slot();
    const std::lock_guard lock(slot.mutex);
    slot.used = shared != nullptr;
    slot.function.swap(shared);
}

namespace ipc_client {

void Trace(IpcTraceEvent event, const TagIPCMessageItem& item) {
    TraceSlot& slot = Slot();
    if (!slot.used.load(std::memory_order_relaxed)) return;
    std::unique_lock lock(slot.mutex);
    const std::shared_ptr<const Function> function = slot.function;
    lock.unlock();
    if (function) (*function)(event, item);
}

}  // namespace ipc_client
