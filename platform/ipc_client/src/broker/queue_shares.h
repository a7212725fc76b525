#pragma once

#include <cstddef>
#include <deque>

namespace ipc_client {

// Whose bytes wait in the queue of one connection, in the queue's order. Not synchronised.
class QueueShares {
public:
    // A sender's bytes that stand together in the queue.
    struct Share {
        unsigned sender;  // the number of its connection
        std::size_t bytes;
    };

    void Queued(Share share) {
        if (!m_shares.empty() && m_shares.back().sender == share.sender) {
            m_shares.back().bytes += share.bytes;
        } else {
            m_shares.push_back(share);
        }
        m_bytes += share.bytes;
    }

    std::size_t Bytes() const { return m_bytes; }

    // Takes off the front what is more than `left` bytes; calls `taken` with each share of it.
    template <typename Taken>
    void ShrinkTo(std::size_t left, const Taken& taken) {
        while (m_bytes > left) {
            Share& first = m_shares.front();
            const Share part{first.sender, first.bytes < m_bytes - left ? first.bytes : m_bytes - left};
            first.bytes -= part.bytes;
            m_bytes -= part.bytes;
            if (first.bytes == 0) m_shares.pop_front();
            taken(part);
        }
    }

private:
    std::deque<Share> m_shares;  // none is empty
    std::size_t m_bytes = 0;
};

}  // namespace ipc_client
