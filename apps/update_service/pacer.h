#pragma once

#include <chrono>
#include <cstdint>
#include <stop_token>

namespace update_service {

// Keeps a transfer at a rate: after each chunk it waits until the bytes so far are due.
class Pacer {
public:
    explicit Pacer(std::uint64_t bytesPerSecond);  // 0: no limit

    // Call after each chunk. Returns false, within a few milliseconds, when `stop` is requested.
    bool Passed(std::uint64_t bytes, const std::stop_token& stop);

private:
    const std::uint64_t m_bytesPerSecond;
    const std::chrono::steady_clock::time_point m_begin;
    std::uint64_t m_bytes = 0;
};

}  // namespace update_service
