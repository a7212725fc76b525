#include "page_waits.h"

#include <chrono>
#include <cstdint>

#include "base/mutex.h"
#include "kernel/sleep.h"

namespace settings_host {

namespace {

using std::chrono::steady_clock;

class PageWaits {
public:
    void SetPercent(unsigned percent) {
        const base::MutexLock lock(m_mutex);
        m_percent = percent;
        m_changed.NotifyAll();
    }

    void Wait(std::uint32_t milliseconds) {
        const steady_clock::time_point begin = steady_clock::now();
        const base::MutexLock lock(m_mutex);
        for (;;) {
            const auto end = begin + std::chrono::microseconds(std::uint64_t{10} * m_percent * milliseconds);
            if (steady_clock::now() >= end) return;
            m_changed.WaitUntil(m_mutex, end);
        }
    }

private:
    base::Mutex m_mutex;
    base::Condition m_changed;
    unsigned m_percent GUARDED_BY(m_mutex) = 100;
};

// Never destroyed: page code may wait while the process exits.
PageWaits& Waits() {
    static PageWaits& waits = *new PageWaits;
    return waits;
}

}  // namespace

void SetWaitPercent(unsigned percent) {
    Waits().SetPercent(percent);
    kernel::SetSleeper([](std::uint32_t milliseconds) { Waits().Wait(milliseconds); });
}

}  // namespace settings_host
