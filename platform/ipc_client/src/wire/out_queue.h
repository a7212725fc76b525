#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ipc_client {

// Whole frames on their way out, in order. The chunk being written stays where it is in memory while more is appended,
// so an asynchronous write may keep its address. Not synchronised.
class OutQueue {
public:
    void Append(std::string_view frames) { m_queued.append(frames); }

    // What to write next; empty when nothing is left. Valid until Written() has been told of all of it.
    std::string_view Chunk();
    void Written(std::size_t bytes) { m_written += bytes; }

    // Bytes not yet written.
    std::size_t Bytes() const { return m_inFlight.size() - m_written + m_queued.size(); }

private:
    std::string m_inFlight;     // whole frames
    std::size_t m_written = 0;  // bytes at the front of m_inFlight that are out
    std::string m_queued;       // whole frames
};

}  // namespace ipc_client
