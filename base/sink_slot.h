#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "base/mutex.h"

namespace base {

// A place for one function that hears of something, such as lines of a log, and can be replaced while others call it.
// Any thread. The function is called without a lock, so it may set another one; a call that is running then ends with
// the old one.
//
// Who may still be called while the process ends keeps the slot in memory that is never freed:
//
//     static auto& slot = *new base::SinkSlot<const std::string&>;
template <typename... Arguments>
class SinkSlot {
public:
    using Sink = std::function<void(Arguments...)>;

    // An empty function: none is set.
    void Set(Sink sink) {
        auto fresh = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
        const MutexLock lock(m_mutex);
        m_isSet = fresh != nullptr;
        m_sink.swap(fresh);  // the old one is destroyed after the lock
    }

    // False when none is set. What the function throws goes to the caller.
    bool Call(Arguments... arguments) const {
        if (!m_isSet.load(std::memory_order_relaxed)) return false;
        const std::shared_ptr<const Sink> sink = Current();
        if (!sink) return false;
        (*sink)(std::forward<Arguments>(arguments)...);
        return true;
    }

    // The same for a function that only hears of something: what it throws is lost, and ends nothing. True when one is
    // set.
    bool Tell(Arguments... arguments) const noexcept {
        try {
            return Call(std::forward<Arguments>(arguments)...);
        } catch (...) {
            return true;
        }
    }

private:
    std::shared_ptr<const Sink> Current() const {
        const MutexLock lock(m_mutex);
        return m_sink;
    }

    std::atomic<bool> m_isSet{false};  // spares the lock while nobody listens
    mutable Mutex m_mutex;
    std::shared_ptr<const Sink> m_sink BASE_GUARDED_BY(m_mutex);
};

}  // namespace base
