#pragma once

#include <algorithm>
#include <chrono>
#include <utility>

namespace ipc_client {

// For how long a connection is patient (docs/protocol.md). Tests choose smaller ones.
struct ConnectionTimes {
    std::chrono::milliseconds firstPause{20};      // before the second attempt to connect; doubles with each
    std::chrono::milliseconds longestPause{1000};  // between two attempts
    std::chrono::milliseconds handshake{5000};     // a broker that has not said hello by then is left
    std::chrono::milliseconds linger{500};         // for what was posted to be written, at the end
};

// How long to wait before each attempt to connect.
class ReconnectPauses {
public:
    explicit ReconnectPauses(const ConnectionTimes& times)
        : m_first(times.firstPause), m_longest(times.longestPause), m_next(times.firstPause) {}

    std::chrono::milliseconds Next() { return std::exchange(m_next, std::min(m_next * 2, m_longest)); }

    // A connection that was open for so long has been lost. One that breaks as soon as it opens is not to be opened
    // again and again without a pause.
    void Lost(std::chrono::steady_clock::duration open) {
        if (open >= m_longest) m_next = m_first;
    }

private:
    std::chrono::milliseconds m_first;
    std::chrono::milliseconds m_longest;
    std::chrono::milliseconds m_next;
};

}  // namespace ipc_client
