#include "seam.h"

namespace seam {

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
