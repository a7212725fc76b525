#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>

#include "wire/frame.h"

namespace ipc_client {

// Which of its own messages a process has taken, and is not to take again. Not synchronised.
class TakenNumbers {
public:
    // False when it has been taken before.
    bool Add(std::uint64_t number) {
        if (!m_ranges.empty() && m_ranges.back().behind == number) {
            ++m_ranges.back().behind;
            return true;
        }
        const auto next = std::upper_bound(m_ranges.begin(), m_ranges.end(), number,
                                           [](std::uint64_t n, const NumberRange& range) { return n < range.behind; });
        if (next != m_ranges.end() && next->first <= number) return false;
        m_ranges.insert(next, {number, number + 1});
        return true;
    }

    // Messages before that one do not come again.
    void ForgetBefore(std::uint64_t number) {
        while (!m_ranges.empty() && m_ranges.front().behind <= number) m_ranges.pop_front();
    }

private:
    std::deque<NumberRange> m_ranges;  // in their order, apart from each other
};

}  // namespace ipc_client
