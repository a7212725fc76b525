#pragma once

#include <cstdint>

#include "channel/payload.h"

// The accessory channel: pipes, endpoints and messages, each declared once. Whoever posts or receives, the host's
// trace, the tests and the check of docs/protocol.md go by these lines.

// Pipes. The accessory page uses only the first.
inline constexpr const wchar_t* IPC_PIPE_ASSISTANT = L"\\\\.\\Pipe\\iKorvelAssistant";
inline constexpr const wchar_t* IPC_PIPE_BASIC_SERVICE = L"\\\\.\\Pipe\\iKorvelBasicService";
inline constexpr const wchar_t* IPC_PIPE_DIAGNOSTICS = L"\\\\.\\Pipe\\iVantorService";

// Further constants that all users of the channel share; the accessory page uses none of them.
inline constexpr const wchar_t* IPC_BODY_KEY = L"body";
inline constexpr const char* IPC_MODULE_NAMES[] = {"orrin",    "orrinNet",    "deskwarden",
                                                   "postrell", "keelService", "brindle"};

// Endpoints: values of destId and sourceId.
inline constexpr std::int32_t IPC_ENDPOINT_PLUGIN = 0x270000;          // the accessory page, and source of its posts
inline constexpr std::int32_t IPC_ENDPOINT_UPDATE_SERVICE = 0xB20001;  // ready message and download commands
inline constexpr std::int32_t IPC_ENDPOINT_HOST_PLUGIN = 0xB20018;     // host: an update starts, an update ends
inline constexpr std::int32_t IPC_ENDPOINT_HOST_LAYOUT = 0x1B0000;     // host: the page's content height
inline constexpr std::int32_t IPC_ENDPOINT_HOST_STATUS = 0x20000;      // host: no row is left

// What the page posts: name, id, endpoint that it goes to, payload (channel/payload.h).
#define CHANNEL_MESSAGES_FROM_PAGE(MESSAGE)                                              \
    MESSAGE(IPC_MSG_ALL_UPDATE_DATA, 0xB20027, IPC_ENDPOINT_UPDATE_SERVICE, NoPayload)   \
    MESSAGE(IPC_MSG_DOWNLOAD_START, 0xB20022, IPC_ENDPOINT_UPDATE_SERVICE, DeviceKey)    \
    MESSAGE(IPC_MSG_DOWNLOAD_PAUSE, 0xB20025, IPC_ENDPOINT_UPDATE_SERVICE, DeviceKey)    \
    MESSAGE(IPC_MSG_PLUGIN_UPDATE, 0xB20033, IPC_ENDPOINT_HOST_PLUGIN, DeviceKey)        \
    MESSAGE(IPC_MSG_PLUGIN_UPDATE_FINISH, 0xB20034, IPC_ENDPOINT_HOST_PLUGIN, DeviceKey) \
    MESSAGE(IPC_MSG_CONTENT_HEIGHT, 0x3A0066, IPC_ENDPOINT_HOST_LAYOUT, Decimal)         \
    MESSAGE(IPC_MSG_NO_UPDATES_LEFT, 0x2271D, IPC_ENDPOINT_HOST_STATUS, Decimal)

// What it is sent. The list answers the ready message under the same id.
#define CHANNEL_MESSAGES_TO_PAGE(MESSAGE)                                          \
    MESSAGE(IPC_MSG_ALL_UPDATE_DATA, 0xB20027, IPC_ENDPOINT_PLUGIN, AccessoryList) \
    MESSAGE(IPC_MSG_DOWNLOAD_PROCESS, 0xB20023, IPC_ENDPOINT_PLUGIN, Progress)     \
    MESSAGE(IPC_MSG_PKG_FINISH, 0xB20024, IPC_ENDPOINT_PLUGIN, DeviceKey)          \
    MESSAGE(IPC_MSG_PKG_FAIL, 0xB20026, IPC_ENDPOINT_PLUGIN, DeviceKey)

namespace channel {

enum class Direction { kFromPage, kToPage };

// One message as posting and receiving see it: the compiler knows its direction and its payload.
template <Direction direction, class Payload>
struct Message {
    const char* name;
    std::int32_t id;
    std::int32_t endpoint;  // destId
};

template <class Payload>
using FromPage = Message<Direction::kFromPage, Payload>;
template <class Payload>
using ToPage = Message<Direction::kToPage, Payload>;

// channel::from_page::IPC_MSG_DOWNLOAD_START and so on.
namespace from_page {
#define CHANNEL_DECLARE(name, id, endpoint, payload) inline constexpr FromPage<payload> name{#name, id, endpoint};
CHANNEL_MESSAGES_FROM_PAGE(CHANNEL_DECLARE)
#undef CHANNEL_DECLARE
}  // namespace from_page

namespace to_page {
#define CHANNEL_DECLARE(name, id, endpoint, payload) inline constexpr ToPage<payload> name{#name, id, endpoint};
CHANNEL_MESSAGES_TO_PAGE(CHANNEL_DECLARE)
#undef CHANNEL_DECLARE
}  // namespace to_page

// One message as logs, documents and tests see it.
struct MessageInfo {
    const char* name;
    std::int32_t id;
    std::int32_t endpoint;
    Direction direction;
    const char* payload;  // kPayloadName
};

template <Direction direction, class Payload>
constexpr MessageInfo Describe(const Message<direction, Payload>& message) {
    static_assert(kPayloadName<Payload> != nullptr);
    return {message.name, message.id, message.endpoint, direction, kPayloadName<Payload>};
}

// Every message.
#define CHANNEL_LIST_FROM_PAGE(name, id, endpoint, payload) Describe(from_page::name),
#define CHANNEL_LIST_TO_PAGE(name, id, endpoint, payload) Describe(to_page::name),
inline constexpr MessageInfo kMessages[] = {CHANNEL_MESSAGES_FROM_PAGE(CHANNEL_LIST_FROM_PAGE)
                                                CHANNEL_MESSAGES_TO_PAGE(CHANNEL_LIST_TO_PAGE)};
#undef CHANNEL_LIST_FROM_PAGE
#undef CHANNEL_LIST_TO_PAGE

// The message with that id that goes to that endpoint; null when the channel has none.
constexpr const MessageInfo* FindMessage(std::int32_t id, std::int32_t endpoint) {
    for (const MessageInfo& message : kMessages) {
        if (message.id == id && message.endpoint == endpoint) return &message;
    }
    return nullptr;
}

}  // namespace channel
