#include "script_runner.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "kernel/sleep.h"

namespace settings_host {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::uint32_t kDay = 24 * 60 * 60 * 1000;  // [ms]

TEST(PageWaits, LastAsManyPercentOfWhatThePageAsksFor) {
    SetWaitPercent(0);
    kernel::Sleep(kDay);
    const auto begin = steady_clock::now();
    SetWaitPercent(1);
    kernel::Sleep(3000);
    EXPECT_GE(steady_clock::now() - begin, milliseconds(30));
    SetWaitPercent(200);
    kernel::Sleep(10);
    EXPECT_GE(steady_clock::now() - begin, milliseconds(50));
}

TEST(PageWaits, AWaitThatRunsIsShortenedAndLengthened) {
    SetWaitPercent(100);
    std::atomic<bool> ended{false};
    std::thread waiter([&] {
        kernel::Sleep(kDay);
        ended = true;
    });
    SetWaitPercent(500);
    EXPECT_FALSE(ended);
    SetWaitPercent(0);
    waiter.join();
    EXPECT_TRUE(ended);
}

}  // namespace
}  // namespace settings_host
