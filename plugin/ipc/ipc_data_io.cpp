#include "ipc/ipc_data_io.h"

#include <new>
#include <type_traits>

#include "ipc/field_order.h"

static_assert(!std::has_virtual_destructor_v<IIPCDataIO>);
static_assert(!std::has_virtual_destructor_v<IPCDataIO>);

struct IPCDataIOFieldOrder {
    static_assert(offsetof(IPCDataIO, m_blockSize) == sizeof(void*));
    static_assert(offsetof(IPCDataIO, m_item) == 2 * sizeof(void*));
    static_assert(offsetof(IPCDataIO, m_attached) == 3 * sizeof(void*));
    static_assert(offsetof(IPCDataIO, m_ownsItem) == 3 * sizeof(void*) + 1);
    static_assert(offsetof(IPCDataIO, m_pos) == 3 * sizeof(void*) + 4);
    static_assert(sizeof(IPCDataIO) == 4 * sizeof(void*));
};

using channel::CopyChecked;
using channel::Holds;

namespace {

// The capacity for `needed` bytes, a multiple of the block size; 0 when it has no 31-bit form.
std::uint32_t RoundedCapacity(std::uint64_t needed, std::uint32_t blockSize) {
    const auto limit = static_cast<std::int32_t>(0x80000000u - blockSize);
    if (needed > INT32_MAX || static_cast<std::int64_t>(needed) > limit) return 0;
    const std::int64_t x = static_cast<std::int64_t>(blockSize) - 1 + static_cast<std::int64_t>(needed);
    const std::int64_t rounded = x - x % blockSize;
    return rounded > INT32_MAX ? 0 : static_cast<std::uint32_t>(rounded);
}

}  // namespace

IPCDataIO::IPCDataIO(TagIPCMessageItem* item, std::uint32_t blockSize, bool attached, bool ownsItem)
    : m_blockSize(blockSize), m_item(item), m_attached(attached), m_ownsItem(ownsItem), m_pos(0) {}

IPCDataIO::~IPCDataIO() {
    if (m_attached && !m_ownsItem) return;
    if (m_item == nullptr || m_item->data == nullptr) return;
    delete[] m_item->data;
    m_item->data = nullptr;
    m_item->dataLen = 0;
    if (m_ownsItem) {
        delete m_item;
        m_item = nullptr;
    }
}

std::uint32_t IPCDataIO::Reserve(std::uint32_t n) {
    if (m_item == nullptr) return 0;
    if (n == 0 || Holds(m_item->dataLen, m_pos, n)) return n;
    const std::uint32_t capacity = RoundedCapacity(static_cast<std::uint64_t>(m_pos) + n, m_blockSize);
    if (capacity == 0) return 0;
    char* const buffer = new (std::nothrow) char[capacity]();
    if (buffer == nullptr) return 0;
    if (m_item->data != nullptr) {
        // Whoever shortened the item behind the cursor's back has no m_pos bytes to be copied.
        if (!Holds(m_item->dataLen, 0, m_pos) || !CopyChecked(buffer, capacity, m_item->data, m_pos)) {
            delete[] buffer;
            return n;  // not grown, yet reported as success, on purpose
        }
        delete[] m_item->data;
    }
    m_item->data = buffer;
    m_item->dataLen = static_cast<std::int32_t>(capacity);
    return n;
}

std::uint32_t IPCDataIO::WriteUInt32(std::uint32_t value) { return Write(&value, 4); }

std::uint32_t IPCDataIO::WriteUInt8(std::uint8_t value) { return Write(&value, 1); }

std::uint32_t IPCDataIO::Write(const void* src, std::uint32_t n) {
    if (src == nullptr || m_item == nullptr) return 0;
    static_cast<IIPCDataIO*>(this)->Reserve(n);
    const bool room = m_item->data != nullptr && Holds(m_item->dataLen, m_pos, n);
    if (room && CopyChecked(m_item->data + m_pos, n, src, n)) m_pos += n;
    return n;
}

std::uint32_t IPCDataIO::ReadUInt32(std::uint32_t* dst) { return Read(dst, 4); }

std::uint32_t IPCDataIO::ReadUInt8(std::uint8_t* dst) { return Read(dst, 1); }

std::uint32_t IPCDataIO::Read(void* dst, std::uint32_t n) {
    if (m_item == nullptr) return 0;
    return channel::ReadBytes(m_item->data, m_item->dataLen, m_pos, dst, n);
}
