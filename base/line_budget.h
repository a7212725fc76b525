#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/mutex.h"

namespace base {

// Keeps the lines of a log that one subject causes, a peer say, from drowning those of the others: each has so many in
// a span of time, which begins with its first; those beyond are counted. The count is told once the span has passed,
// when the next line of any subject is asked about, or at the end. Any thread.
class LineBudget {
public:
    using Clock = std::chrono::steady_clock;

    struct Limits {
        std::size_t lines = 60;
        Clock::duration span = std::chrono::minutes(1);
        std::size_t subjects = 256;  // in one span; those beyond are one, whose name is empty
    };

    // How many lines of a subject were left out. Called on the thread that asks, without a lock; must not throw.
    using Tell = std::function<void(const std::string& subject, std::size_t leftOut)>;

    LineBudget(const Limits& limits, Tell tell) : m_limits(limits), m_tell(std::move(tell)) {}
    ~LineBudget() { End(); }
    LineBudget(const LineBudget&) = delete;
    LineBudget& operator=(const LineBudget&) = delete;

    // Whether a line of that subject may be written now. Throws std::bad_alloc.
    bool Spend(const std::string& subject, Clock::time_point now = Clock::now());

    // Tells every count now; the spans of all are over.
    void End();

private:
    struct Spent {
        Clock::time_point until;
        std::size_t lines = 0;
        std::size_t leftOut = 0;
    };
    using Subjects = std::map<std::string, Spent>;

    Subjects TakeEnded(Clock::time_point now) BASE_REQUIRES(m_mutex);
    bool SpendOf(const std::string& subject, Clock::time_point now) BASE_REQUIRES(m_mutex);
    void TellOf(const Subjects& ended) const;

    const Limits m_limits;
    const Tell m_tell;
    Mutex m_mutex;
    Subjects m_subjects BASE_GUARDED_BY(m_mutex);
    Clock::time_point m_nextEnd BASE_GUARDED_BY(m_mutex) = Clock::time_point::max();  // of a span
};

}  // namespace base
