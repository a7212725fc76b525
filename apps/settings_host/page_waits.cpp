#include "page_waits.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "kernel/sleep.h"

namespace settings_host {

namespace {

using std::chrono::steady_clock;

class PageWaits {
public:
    void SetPercent(unsigned percent) {
        const std::lock_guard lock(m_mutex);
        m_percent = percent;
        m_changed.notify_all();
    }

    void Wait(std::uint32_t milliseconds) {
        const steady_clock::time_point begin = steady_clock::now();
        std::unique_lock lock(m_mutex);
        const auto end = [&] {
            return begin + std::chrono::microseconds(std::uint64_t{10} * m_percent * milliseconds);
        };
        while (steady_clock::now() < end()) m_changed.wait_until(lock, end());
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    unsigned m_percent = 100;
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
