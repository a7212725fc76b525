#include "pacer.h"

#include <gtest/gtest.h>

#include <thread>

#include "test_clock.h"

namespace update_service {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

TEST(Pacer, EachChunkWaitsUntilTheBytesSoFarAreDue) {
    TestClock clock;
    Pacer pacer(1000, clock);
    for (const milliseconds due : {milliseconds(250), milliseconds(500), milliseconds(750)}) {
        EXPECT_TRUE(pacer.Passed(250, {}));
        EXPECT_EQ(clock.passed, due);
    }
}

TEST(Pacer, TimeThatWasLostIsMadeUpFor) {
    TestClock clock;
    Pacer pacer(1000, clock);
    clock.passed = milliseconds(600);
    clock.onWait = [] { ADD_FAILURE() << "waits"; };
    EXPECT_TRUE(pacer.Passed(250, {}));
    EXPECT_TRUE(pacer.Passed(250, {}));
    clock.onWait = [] {};
    EXPECT_TRUE(pacer.Passed(250, {}));
    EXPECT_EQ(clock.passed, milliseconds(750));
}

TEST(Pacer, WithoutALimitNothingWaits) {
    TestClock clock;
    Pacer pacer(0, clock);
    EXPECT_TRUE(pacer.Passed(1u << 30, {}));
    EXPECT_EQ(clock.passed, milliseconds(0));
}

TEST(Pacer, AStopIsTold) {
    std::stop_source stop;
    TestClock clock;
    clock.onWait = [&] { stop.request_stop(); };
    Pacer pacer(1000, clock);
    EXPECT_FALSE(pacer.Passed(250, stop.get_token()));
    EXPECT_FALSE(Pacer(0, clock).Passed(1, stop.get_token()));
}

TEST(SteadyClock, WaitsUntilTheTimeHasCome) {
    const Clock clock = SteadyClock();
    const auto deadline = clock.now() + milliseconds(15);
    clock.waitUntil(deadline, {});
    EXPECT_GE(clock.now(), deadline);
    clock.waitUntil(deadline - hours(1), {});
}

// A wait that did not see the stop would run into the test's limit.
TEST(SteadyClock, AStopEndsAWait) {
    std::stop_source stop;
    const Clock clock = SteadyClock();
    const std::jthread stopper([&] { stop.request_stop(); });
    clock.waitUntil(clock.now() + hours(24), stop.get_token());
    EXPECT_TRUE(stop.stop_requested());
}

}  // namespace
}  // namespace update_service
