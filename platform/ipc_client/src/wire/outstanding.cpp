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
    m_doneHere += count;
}

std::uint32_t& Outstanding::HoldersOf(std::uint64_t number) {
    return number < m_first ? m_old.find(number)->second : m_holders[number - m_first];
}

void Outstanding::Release(std::uint64_t number) noexcept {
    if (--HoldersOf(number) != 0) return;
    try {
        AddDone(number);
    } catch (const std::bad_alloc&) {
        m_untold = std::min(m_untold, number);
    }
    if (number < m_first) {
        m_old.erase(number);
    } else {
        ++m_doneHere;
        DropDone();
    }
}

void Outstanding::AddDone(std::uint64_t number) {
    if (!m_done.empty() && m_done.back().behind == number) {
        ++m_done.back().behind;
    } else {
        m_done.push_back({number, number + 1});
    }
}

// One that stays, while most that came after it is done, leaves the row, so that the row stays short.
void Outstanding::DropDone() {
    while (!m_holders.empty() && (m_holders.front() == 0 || IsMostlyDone())) {
        if (m_holders.front() == 0) {
            --m_doneHere;
        } else {
            try {
                m_old.emplace(m_first, m_holders.front());
            } catch (const std::bad_alloc&) {
                return;  // another time
            }
        }
        m_holders.pop_front();
        ++m_first;
    }
}

bool Outstanding::IsMostlyDone() const {
    constexpr std::size_t kSlack = 1024;
    return m_doneHere > kSlack && m_doneHere > m_holders.size() / 2;
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
    std::uint64_t first = number;  // of a range that is done, perhaps empty
    const auto endAt = [&](std::uint64_t behind) {
        if (first < behind) done.push_back({first, behind});
        first = behind + 1;
    };
    for (auto old = m_old.lower_bound(number); old != m_old.end(); ++old) endAt(old->first);
    for (std::uint64_t at = std::max(number, m_first); at < Next(); ++at) {
        if (m_holders[at - m_first] != 0) endAt(at);
    }
    endAt(Next());
    return done;
}

}  // namespace ipc_client
