#include "pacer.h"

namespace update_service {

Pacer::Pacer(std::uint64_t bytesPerSecond)
    : m_bytesPerSecond(bytesPerSecond), m_begin(std::chrono::steady_clock::now()) {}

bool Pacer::Passed(std::uint64_t bytes, const std::stop_token& stop) {
    m_bytes += bytes;
    if (m_bytesPerSecond != 0) {
        const std::chrono::duration<double> due(static_cast<double>(m_bytes) / static_cast<double>(m_bytesPerSecond));
        const auto deadline = m_begin + std::chrono::duration_cast<std::chrono::steady_clock::duration>(due);
        std::unique_lock lock(m_mutex);
        m_wake.wait_until(lock, stop, deadline, [] { return false; });
    }
    return !stop.stop_requested();
}

}  // namespace update_service
