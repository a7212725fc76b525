#include "wire/outstanding.h"

#include <algorithm>
#include <new>
#include <utility>

namespace ipc_client {

void Outstanding::StartAt(std::uint64_t number) {
    m_first = number;
    m_done.clear();
    m_untold = kNone;
}

std::uint64_t Outstanding::Begin() {
    m_holders.push_back(1);
    return Next() - 1;
}

// Its sender knows that they are done.
void Outstanding::Skip(std::uint64_t count) {
    if (m_holders.empty()) {
        m_first += count;
        return;
    }
    m_holders.resize(m_holders.size() + count, 0);
}

void Outstanding::Release(std::uint64_t number) noexcept {
    if (--m_holders[number - m_first] != 0) return;
    try {
        AddDone(number);
    } catch (const std::bad_alloc&) {
        m_untold = std::min(m_untold, number);
    }
    DropDone();
}

void Outstanding::AddDone(std::uint64_t number) {
    if (!m_done.empty() && m_done.back().behind == number) {
        ++m_done.back().behind;
    } else {
        m_done.push_back({number, number + 1});
    }
}

void Outstanding::DropDone() {
    while (!m_holders.empty() && m_holders.front() == 0) {
        m_holders.pop_front();
        ++m_first;
    }
}

std::vector<NumberRange> Outstanding::TakeDone() {
    if (m_untold == kNone) return std::exchange(m_done, {});
    std::vector<NumberRange> done = DoneFrom(m_untold);
    done.insert(done.end(), m_done.begin(), m_done.end());
    m_untold = kNone;
    m_done.clear();
    return done;
}

std::vector<NumberRange> Outstanding::DoneFrom(std::uint64_t number) const {
    std::vector<NumberRange> done;
    if (number < m_first) done.push_back({number, m_first});
    for (std::uint64_t at = number < m_first ? m_first : number; at < Next(); ++at) {
        if (m_holders[at - m_first] != 0) continue;
        if (!done.empty() && done.back().behind == at) {
            ++done.back().behind;
        } else {
            done.push_back({at, at + 1});
        }
    }
    return done;
}

}  // namespace ipc_client
