#include "seam.h"

#include <algorithm>

#include "kernel/sleep.h"
#include "kernel/ui_turn.h"

namespace seam {
namespace {

void RecordSleep(std::uint32_t milliseconds) {
    Event event{};
    event.kind = Kind::kSleep;
    event.number = static_cast<int>(milliseconds);
    Get().events.push_back(std::move(event));
    if (!Get().onSleep) return;
    const kernel::UiTurn turn;  // others could have it meanwhile, but there are none
    Get().onSleep(milliseconds);
}

// Before any page code runs: this library is loaded with the program.
[[maybe_unused]] const bool sleepsAreRecorded = (kernel::SetSleeper(RecordSleep), true);

// False when the client has no callback for that id any more.
bool Call(const Seam& seam, const void* client, int msgId, std::string payload, int endpointId) {
    const auto& callbacks = seam.callbacks.at(msgId);
    const auto entry = std::find_if(callbacks.begin(), callbacks.end(),
                                    [client](const Callback& callback) { return callback.client == client; });
    if (entry == callbacks.end()) return false;
    const auto function = entry->function;  // a copy: the callback may unregister itself
    TagIPCMessageItem item;
    item.destId = endpointId;
    item.msgId = msgId;
    item.dataLen = static_cast<std::int32_t>(payload.size());
    item.data = payload.empty() ? nullptr : payload.data();
    function(item);
    return true;
}

}  // namespace

Seam& Get() {
    static Seam instance;
    return instance;
}

bool Seam::Deliver(int msgId, const std::string& payload, int endpointId) {
    std::vector<const void*> receivers;
    for (const Callback& callback : callbacks[msgId]) {
        if (callback.endpointId == endpointId) receivers.push_back(callback.client);
    }
    bool delivered = false;
    for (const void* const client : receivers) delivered = Call(*this, client, msgId, payload, endpointId) || delivered;
    return delivered;
}

}  // namespace seam
