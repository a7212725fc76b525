#pragma once

#include <algorithm>

#include "pacer.h"

namespace update_service {

// A clock that stands still but for waits, which take no time. Must outlive what uses it.
class TestClock {
public:
    using Time = Clock::Time;

    operator Clock() {
        return {.now = [this] { return m_begin + passed; },
                .waitUntil = [this](Time deadline, const std::stop_token& stop) { Wait(deadline, stop); }};
    }

    Time::duration passed{};
    std::function<void()> onWait = [] {};  // before a wait is over; a stop that it requests ends the wait

private:
    void Wait(Time deadline, const std::stop_token& stop) {
        if (deadline <= m_begin + passed) return;
        onWait();
        if (!stop.stop_requested()) passed = deadline - m_begin;
    }

    const Time m_begin{std::chrono::hours(1)};
};

}  // namespace update_service
