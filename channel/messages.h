#pragma once

#include <cstdint>

// The constants of the accessory channel: pipe, endpoints, messages. No code.
//
// The plug-in, the update service and the host all read them here; docs/protocol.md describes the payloads.

// Pipes. The accessory page uses the first alone.
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

// Messages. 0xB20027 goes both ways: the page's ready message has no payload, the answer carries the list.
inline constexpr std::int32_t IPC_MSG_DOWNLOAD_START = 0xB20022;
inline constexpr std::int32_t IPC_MSG_DOWNLOAD_PROCESS = 0xB20023;
inline constexpr std::int32_t IPC_MSG_PKG_FINISH = 0xB20024;
inline constexpr std::int32_t IPC_MSG_DOWNLOAD_PAUSE = 0xB20025;
inline constexpr std::int32_t IPC_MSG_PKG_FAIL = 0xB20026;
inline constexpr std::int32_t IPC_MSG_ALL_UPDATE_DATA = 0xB20027;
inline constexpr std::int32_t IPC_MSG_PLUGIN_UPDATE = 0xB20033;
inline constexpr std::int32_t IPC_MSG_PLUGIN_UPDATE_FINISH = 0xB20034;
inline constexpr std::int32_t IPC_MSG_CONTENT_HEIGHT = 0x3A0066;
inline constexpr std::int32_t IPC_MSG_NO_UPDATES_LEFT = 0x2271D;
