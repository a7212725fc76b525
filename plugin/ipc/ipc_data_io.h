#pragma once

#include <cstdint>

#include "channel/byte_cursor.h"
#include "ipc_client/ipc_message_item.h"

// Reads from, or writes into, the payload of one message.
//
//     IPCDataIO reader(&item, 64, true, false);  // a received message: nothing of it is released
//     IPCDataIO writer(&item, 64, false, false); // fills item.data, which the writer releases at its end
//
// A read that finds too few bytes copies nothing and leaves the cursor where it was; reading may go on with a shorter
// field. While writing, dataLen is the capacity of the buffer, a multiple of the block size.
class IPCDataIO final : public IIPCDataIO {
public:
    // `item` may be null: every operation then returns 0. `attached`: the payload belongs to somebody else. `ownsItem`:
    // the item was made with new and belongs to this object.
    IPCDataIO(TagIPCMessageItem* item, std::uint32_t blockSize, bool attached, bool ownsItem);

    // Releases the payload unless it is attached and the item is not owned; an owned item goes with its payload, and
    // stays when it has none.
    ~IPCDataIO();

    IPCDataIO(const IPCDataIO&) = delete;
    IPCDataIO& operator=(const IPCDataIO&) = delete;

    // Makes room for n bytes at the cursor. 0 when that cannot be done.
    std::uint32_t Reserve(std::uint32_t n) override;
    std::uint32_t WriteUInt32(std::uint32_t value) override;
    std::uint32_t WriteUInt8(std::uint8_t value) override;
    // Returns n even when there was no room: the cursor then has not moved.
    std::uint32_t Write(const void* src, std::uint32_t n) override;
    std::uint32_t ReadUInt32(std::uint32_t* dst) override;
    std::uint32_t ReadUInt8(std::uint8_t* dst) override;
    std::uint32_t Read(void* dst, std::uint32_t n) override;

    std::uint32_t Position() const { return m_pos; }  // [bytes] read or written so far

private:
    friend struct IPCDataIOFieldOrder;  // compile-time check of the field order

    std::uint32_t m_blockSize;
    TagIPCMessageItem* m_item;
    bool m_attached;
    bool m_ownsItem;
    std::uint32_t m_pos;
};
