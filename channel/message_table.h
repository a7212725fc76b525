#pragma once

#include <cstdint>

#include "ipc/channel.h"

// What a message of the accessory channel carries.
enum class IpcPayload {
    kNone,          // dataLen 0, data null
    kDeviceKey,     // the device key and its terminating zero
    kDecimal,       // digits of a signed number, without a zero
    kProgress,      // PkgDownloadProcess
    kAccessoryList  // std::vector<AccessoryVersionDataInfo>
};

enum class IpcDirection { kSent, kReceived };  // as the accessory page sees it

struct IpcMessageDescriptor {
    std::int32_t msgId;
    const char* name;
    IpcDirection direction;
    std::int32_t endpoint;  // destId of the message
    IpcPayload payload;
};

// Every message of the channel, once: what logs, documentation checks and tests go by.
inline constexpr IpcMessageDescriptor kIpcMessages[] = {
    {IPC_MSG_ALL_UPDATE_DATA, "IPC_MSG_ALL_UPDATE_DATA", IpcDirection::kSent, IPC_ENDPOINT_UPDATE_SERVICE,
     IpcPayload::kNone},
    {IPC_MSG_DOWNLOAD_START, "IPC_MSG_DOWNLOAD_START", IpcDirection::kSent, IPC_ENDPOINT_UPDATE_SERVICE,
     IpcPayload::kDeviceKey},
    {IPC_MSG_DOWNLOAD_PAUSE, "IPC_MSG_DOWNLOAD_PAUSE", IpcDirection::kSent, IPC_ENDPOINT_UPDATE_SERVICE,
     IpcPayload::kDeviceKey},
    {IPC_MSG_PLUGIN_UPDATE, "IPC_MSG_PLUGIN_UPDATE", IpcDirection::kSent, IPC_ENDPOINT_HOST_PLUGIN,
     IpcPayload::kDeviceKey},
    {IPC_MSG_PLUGIN_UPDATE_FINISH, "IPC_MSG_PLUGIN_UPDATE_FINISH", IpcDirection::kSent, IPC_ENDPOINT_HOST_PLUGIN,
     IpcPayload::kDeviceKey},
    {IPC_MSG_CONTENT_HEIGHT, "IPC_MSG_CONTENT_HEIGHT", IpcDirection::kSent, IPC_ENDPOINT_HOST_LAYOUT,
     IpcPayload::kDecimal},
    {IPC_MSG_NO_UPDATES_LEFT, "IPC_MSG_NO_UPDATES_LEFT", IpcDirection::kSent, IPC_ENDPOINT_HOST_STATUS,
     IpcPayload::kDecimal},
    {IPC_MSG_ALL_UPDATE_DATA, "IPC_MSG_ALL_UPDATE_DATA", IpcDirection::kReceived, IPC_ENDPOINT_PLUGIN,
     IpcPayload::kAccessoryList},
    {IPC_MSG_DOWNLOAD_PROCESS, "IPC_MSG_DOWNLOAD_PROCESS", IpcDirection::kReceived, IPC_ENDPOINT_PLUGIN,
     IpcPayload::kProgress},
    {IPC_MSG_PKG_FINISH, "IPC_MSG_PKG_FINISH", IpcDirection::kReceived, IPC_ENDPOINT_PLUGIN, IpcPayload::kDeviceKey},
    {IPC_MSG_PKG_FAIL, "IPC_MSG_PKG_FAIL", IpcDirection::kReceived, IPC_ENDPOINT_PLUGIN, IpcPayload::kDeviceKey},
};
