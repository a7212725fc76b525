#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <stop_token>

namespace update_service {

// The time that a transfer keeps to, and how it lets time pass.
struct Clock {
    using Time = std::chrono::steady_clock::time_point;

    std::function<Time()> now;
    // Returns at `deadline`, or within a few milliseconds of a request to stop.
    std::function<void(Time deadline, const std::stop_token& stop)> waitUntil;
};

// The system's steady clock.
Clock SteadyClock();

// Keeps a transfer at a rate: after each chunk it waits until the bytes so far are due.
class Pacer {
public:
    // The transfer begins now. A rate of 0 is no limit.
    Pacer(std::uint64_t bytesPerSecond, Clock clock);

    // Call after each chunk. Returns false, within a few milliseconds, when `stop` is requested.
    bool Passed(std::uint64_t bytes, const std::stop_token& stop);

private:
    const std::uint64_t m_bytesPerSecond;
    const Clock m_clock;
    const Clock::Time m_begin;
    std::uint64_t m_bytes = 0;
};

}  // namespace update_service
