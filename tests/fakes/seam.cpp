#include "seam.h"

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

}  // namespace

Seam& Get() {
    static Seam instance;
    return instance;
}

bool DeliverTo(Seam& seam, int msgId, std::string payload) {
    const auto found = seam.callbacks.find(msgId);
    if (found == seam.callbacks.end() || found->second.empty()) return false;
    const auto function = found->second.back().function;  // a copy: the callback may unregister itself
    TagIPCMessageItem item;
    item.destId = 0x270000;
    item.msgId = msgId;
    item.dataLen = static_cast<std::int32_t>(payload.size());
    item.data = payload.empty() ? nullptr : payload.data();
    function(item);
    return true;
}

}  // namespace seam
