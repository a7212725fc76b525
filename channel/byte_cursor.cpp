#include "channel/byte_cursor.h"

namespace channel {

std::uint32_t ByteReader::Read(void* dst, std::uint32_t n) {
    return ReadBytes(m_bytes.data(), static_cast<std::int32_t>(m_bytes.size()), m_position, dst, n);
}

std::uint32_t ByteWriter::Write(const void* src, std::uint32_t n) {
    if (m_memory != nullptr && n != 0) std::memcpy(m_memory + m_position, src, n);
    m_position += n;
    return n;
}

}  // namespace channel
