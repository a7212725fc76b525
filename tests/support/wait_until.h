#pragma once

#include <chrono>
#include <thread>

namespace test_support {

inline constexpr std::chrono::seconds kPatience{30};  // for what must happen; sanitizers are slow

// Looks again and again until the condition holds; false when patience ends first.
template <class Condition>
[[nodiscard]] bool WaitUntil(const Condition& condition, std::chrono::milliseconds patience = kPatience) {
    constexpr std::chrono::milliseconds kLookAgain{1};
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(kLookAgain);
    }
    return true;
}

}  // namespace test_support
