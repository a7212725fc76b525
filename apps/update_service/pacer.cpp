#include "pacer.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace update_service {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLookAgain{10};  // how late a stop may be seen

// No wait for the token itself: with mingw's runtime a stop that comes while such a wait ends may hang.
void WaitUntil(steady_clock::time_point deadline, const std::stop_token& stop) {
    for (auto now = steady_clock::now(); now < deadline && !stop.stop_requested(); now = steady_clock::now()) {
        std::this_thread::sleep_until(std::min(deadline, now + kLookAgain));
    }
}

}  // namespace

Clock SteadyClock() { return {.now = steady_clock::now, .waitUntil = WaitUntil}; }

Pacer::Pacer(std::uint64_t bytesPerSecond, Clock clock)
    : m_bytesPerSecond(bytesPerSecond), m_clock(std::move(clock)), m_begin(m_clock.now()) {}

bool Pacer::Passed(std::uint64_t bytes, const std::stop_token& stop) {
    m_bytes += bytes;
    if (m_bytesPerSecond != 0) {
        const std::chrono::duration<double> due(static_cast<double>(m_bytes) / static_cast<double>(m_bytesPerSecond));
        m_clock.waitUntil(m_begin + std::chrono::duration_cast<steady_clock::duration>(due), stop);
    }
    return !stop.stop_requested();
}

}  // namespace update_service
