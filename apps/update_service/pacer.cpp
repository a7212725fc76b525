#include "pacer.h"

#include <algorithm>
#include <thread>

namespace update_service {

namespace {

constexpr std::chrono::milliseconds kLookAgain{10};  // how late a stop may be seen

}  // namespace

Pacer::Pacer(std::uint64_t bytesPerSecond)
    : m_bytesPerSecond(bytesPerSecond), m_begin(std::chrono::steady_clock::now()) {}

bool Pacer::Passed(std::uint64_t bytes, const std::stop_token& stop) {
    m_bytes += bytes;
    if (m_bytesPerSecond != 0) {
        const std::chrono::duration<double> due(static_cast<double>(m_bytes) / static_cast<double>(m_bytesPerSecond));
        const auto deadline = m_begin + std::chrono::duration_cast<std::chrono::steady_clock::duration>(due);
        // No wait for the token itself: with mingw's runtime a stop that comes while such a wait ends may hang.
        for (auto now = std::chrono::steady_clock::now(); now < deadline && !stop.stop_requested();
             now = std::chrono::steady_clock::now()) {
            std::this_thread::sleep_until(std::min(deadline, now + kLookAgain));
        }
    }
    return !stop.stop_requested();
}

}  // namespace update_service
