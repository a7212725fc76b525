#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// One message as the IPC library takes and delivers it: a header of endpoint and message ids and an opaque payload.
// The record is shared between separately built modules, so its layout is fixed: 80 bytes, integers little-endian.
// A plain value; it never owns its payload.
struct TagIPCMessageItem {
    std::string text;               // not used by the accessory page: "" on every post
    std::int32_t destId = 0;        // endpoint the message is addressed to
    std::int32_t sourceId = 0;      // endpoint that sends
    std::int32_t msgId = 0;         // what callbacks are registered for
    std::int32_t headerWord1 = 0;   // 0 on post
    std::int32_t headerWord2 = -1;  // -1 on post
    std::int32_t headerWord3 = 0;   // 0 on post
    std::int32_t dataLen = 0;       // [bytes] payload length
    char* data = nullptr;           // payload, owned by the sender or by the delivering client; null when there is none
    std::uint8_t flag = 0;          // 0 on post
    std::int32_t headerWord4 = 0;   // 0 on post
};

#if !defined(_ITERATOR_DEBUG_LEVEL) || _ITERATOR_DEBUG_LEVEL == 0  // a debug library's strings are longer than 32 bytes
static_assert(sizeof(std::string) == 32);
static_assert(sizeof(TagIPCMessageItem) == 80);
static_assert(offsetof(TagIPCMessageItem, text) == 0);
static_assert(offsetof(TagIPCMessageItem, destId) == 32);
static_assert(offsetof(TagIPCMessageItem, sourceId) == 36);
static_assert(offsetof(TagIPCMessageItem, msgId) == 40);
static_assert(offsetof(TagIPCMessageItem, headerWord1) == 44);
static_assert(offsetof(TagIPCMessageItem, headerWord2) == 48);
static_assert(offsetof(TagIPCMessageItem, headerWord3) == 52);
static_assert(offsetof(TagIPCMessageItem, dataLen) == 56);
static_assert(offsetof(TagIPCMessageItem, data) == 64);
static_assert(offsetof(TagIPCMessageItem, flag) == 72);
static_assert(offsetof(TagIPCMessageItem, headerWord4) == 76);
#endif
