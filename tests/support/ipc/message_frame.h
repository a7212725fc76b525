#pragma once

#include <string>
#include <vector>

#include "wire/frame.h"

namespace ipc_test {

// The frame of a message with that payload.
inline std::string MessageFrame(std::string data, ipc_client::Route to = {}, int sourceId = 0) {
    TagIPCMessageItem item;
    item.destId = to.endpointId;
    item.sourceId = sourceId;
    item.msgId = to.msgId;
    item.data = data.empty() ? nullptr : data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    std::string frame;
    ipc_client::AppendMessage(frame, item);
    return frame;
}

inline std::string AnnouncementFrame(const std::vector<ipc_client::Route>& routes) {
    std::string frame;
    ipc_client::AppendRoutes(frame, ipc_client::FrameType::kAnnounce, routes);
    return frame;
}

}  // namespace ipc_test
