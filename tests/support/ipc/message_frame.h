#pragma once

#include <string>

#include "wire/frame.h"

namespace ipc_test {

// The frame of a message with that payload and no other field set.
inline std::string MessageFrame(std::string data) {
    TagIPCMessageItem item;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    std::string frame;
    ipc_client::AppendMessage(frame, item);
    return frame;
}

}  // namespace ipc_test
