#include "base/sink_slot.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace base {
namespace {

using Slot = SinkSlot<int, const std::string&>;

TEST(SinkSlot, CallsTheOneThatWasSetLast) {
    Slot slot;
    std::string heard;
    EXPECT_FALSE(slot.Call(1, "nobody listens"));
    slot.Set([&](int level, const std::string& line) { heard += std::to_string(level) + line; });
    EXPECT_TRUE(slot.Call(2, "a"));
    slot.Set([&](int, const std::string& line) { heard += line; });
    EXPECT_TRUE(slot.Call(3, "b"));
    slot.Set({});
    EXPECT_FALSE(slot.Call(4, "c"));
    EXPECT_EQ(heard, "2ab");
}

TEST(SinkSlot, MayBeSetFromInsideACall) {
    Slot slot;
    auto alive = std::make_shared<int>(7);
    int seen = 0;
    slot.Set([&slot, &seen, alive](int, const std::string&) {
        slot.Set({});
        seen = *alive;  // the running function is still there
    });
    EXPECT_TRUE(slot.Call(1, ""));
    EXPECT_EQ(seen, 7);
    EXPECT_EQ(alive.use_count(), 1);
}

TEST(SinkSlot, WhatASinkThrowsGoesToTheCaller) {
    Slot slot;
    slot.Set([](int, const std::string&) { throw 3; });
    EXPECT_THROW(slot.Call(1, ""), int);
    EXPECT_THROW(slot.Call(1, ""), int) << "the lock is still held";
}

TEST(SinkSlot, WhatASinkThrowsThatIsOnlyToldEndsNothing) {
    Slot slot;
    EXPECT_FALSE(slot.Tell(1, "nobody listens"));
    int lines = 0;
    slot.Set([&lines](int, const std::string&) {
        ++lines;
        throw 3;
    });
    EXPECT_TRUE(slot.Tell(1, ""));
    EXPECT_TRUE(slot.Tell(1, "")) << "the lock is still held";
    EXPECT_EQ(lines, 2);
}

TEST(SinkSlot, IsReplacedWhileOtherThreadsCallIt) {
    Slot slot;
    std::atomic<int> calls = 0;
    const auto count = [&calls](int, const std::string&) { ++calls; };
    slot.Set(count);
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&slot] {
            for (int n = 0; n < 500; ++n) EXPECT_TRUE(slot.Call(n, "line"));
        });
    }
    for (int n = 0; n < 500; ++n) slot.Set(count);
    threads.clear();
    EXPECT_EQ(calls, 1500);
}

}  // namespace
}  // namespace base
