#include "base/line_budget.h"

#include <algorithm>
#include <utility>

namespace base {

bool LineBudget::Spend(const std::string& subject, Clock::time_point now) {
    Subjects ended;
    bool isGranted = false;
    {
        const MutexLock lock(m_mutex);
        ended = TakeEnded(now);
        isGranted = SpendOf(subject, now);
    }
    TellOf(ended);
    return isGranted;
}

void LineBudget::End() {
    Subjects ended;
    {
        const MutexLock lock(m_mutex);
        ended.swap(m_subjects);
        m_nextEnd = Clock::time_point::max();
    }
    TellOf(ended);
}

// Moves them, which takes no memory.
LineBudget::Subjects LineBudget::TakeEnded(Clock::time_point now) {
    Subjects ended;
    if (now < m_nextEnd) return ended;
    m_nextEnd = Clock::time_point::max();
    for (auto entry = m_subjects.begin(); entry != m_subjects.end();) {
        const auto next = std::next(entry);
        if (entry->second.until <= now) {
            ended.insert(m_subjects.extract(entry));
        } else {
            m_nextEnd = std::min(m_nextEnd, entry->second.until);
        }
        entry = next;
    }
    return ended;
}

bool LineBudget::SpendOf(const std::string& subject, Clock::time_point now) {
    const bool isOneMore = m_subjects.size() >= m_limits.subjects && !m_subjects.contains(subject);
    const auto [entry, isNew] = m_subjects.try_emplace(isOneMore ? std::string() : subject);
    Spent& spent = entry->second;
    if (isNew) {
        spent.until = now + m_limits.span;
        m_nextEnd = std::min(m_nextEnd, spent.until);
    }
    const bool isGranted = spent.lines < m_limits.lines;
    ++(isGranted ? spent.lines : spent.leftOut);
    return isGranted;
}

void LineBudget::TellOf(const Subjects& ended) const {
    for (const auto& [subject, spent] : ended) {
        if (spent.leftOut != 0) m_tell(subject, spent.leftOut);
    }
}

}  // namespace base
