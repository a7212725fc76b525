#include "wire/out_queue.h"

#include <utility>

#include "wire/frame.h"

namespace ipc_client {
namespace {

constexpr std::size_t kKeptCapacity = 1024 * 1024;  // a buffer that a burst made larger is given back

// Appends those message frames of `frames` to `kept` that end behind the first `written` bytes.
void KeepMessages(std::string_view frames, std::size_t written, std::string& kept) {
    std::size_t begin = 0;
    while (begin < frames.size()) {
        const FrameHead head = DecodeHead(frames.substr(begin, kFrameHeadBytes));
        const std::size_t wholeBytes = kFrameHeadBytes + head.bodyBytes;
        if (head.type == FrameType::kMessage && begin + wholeBytes > written) {
            kept.append(frames.substr(begin, wholeBytes));
        }
        begin += wholeBytes;
    }
}

}  // namespace

std::string_view OutQueue::Chunk() {
    if (m_written == m_inFlight.size()) {
        m_inFlight.clear();
        if (m_inFlight.capacity() > kKeptCapacity) m_inFlight.shrink_to_fit();
        m_written = 0;
        std::swap(m_inFlight, m_queued);
    }
    return std::string_view(m_inFlight).substr(m_written);
}

std::string OutQueue::TakeMessages() {
    std::string kept;
    KeepMessages(m_inFlight, m_written, kept);
    KeepMessages(m_queued, 0, kept);
    *this = OutQueue();
    return kept;
}

}  // namespace ipc_client
