#include <cstring>
#include <memory>
#include <utility>

#include "wire/frame.h"

namespace ipc_client {
namespace {

constexpr std::size_t kReadBytes = 64 * 1024;  // room offered for one read, at least half of it

}  // namespace

FrameReader::FrameReader() { Resize(kReadBytes); }

// Keeps what has not been taken.
void FrameReader::Resize(std::size_t bytes) {
    auto buffer = std::make_unique_for_overwrite<char[]>(bytes);
    if (m_end != m_begin) std::memcpy(buffer.get(), m_buffer.get() + m_begin, m_end - m_begin);
    m_buffer = std::move(buffer);
    m_size = bytes;
    m_end -= std::exchange(m_begin, 0);
}

std::span<char> FrameReader::Space() {
    if (m_begin == m_end) {
        m_begin = m_end = 0;
        if (m_size > 16 * kReadBytes) Resize(kReadBytes);
    }
    if (m_size - m_end < kReadBytes / 2 && m_begin != 0) {
        std::memmove(m_buffer.get(), m_buffer.get() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
    }
    if (m_size - m_end < kReadBytes / 2) Resize(m_size * 2);
    return {m_buffer.get() + m_end, m_size - m_end};
}

void FrameReader::Commit(std::size_t bytes) { m_end += bytes; }

std::size_t FrameReader::GrownBytes() const { return m_size - kReadBytes; }

bool FrameReader::TakeHello() {
    if (m_helloTaken) return true;
    if (Unread().size() < kHelloBytes) return false;
    CheckHello(Unread().substr(0, kHelloBytes));
    m_begin += kHelloBytes;
    m_helloTaken = true;
    return true;
}

std::optional<FrameView> FrameReader::Next() {
    const std::string_view unread = Unread();
    if (unread.size() < kFrameHeadBytes) return std::nullopt;
    const FrameHead head = DecodeHead(unread.substr(0, kFrameHeadBytes));
    const std::size_t wholeBytes = kFrameHeadBytes + head.bodyBytes;
    if (unread.size() < wholeBytes) return std::nullopt;
    m_begin += wholeBytes;
    return FrameView{head.type, unread.substr(kFrameHeadBytes, head.bodyBytes), unread.substr(0, wholeBytes)};
}

}  // namespace ipc_client
