#include "wire/out_queue.h"

#include <utility>

namespace ipc_client {
namespace {

constexpr std::size_t kKeptCapacity = 1024 * 1024;  // a buffer that a burst made larger is given back

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

}  // namespace ipc_client
