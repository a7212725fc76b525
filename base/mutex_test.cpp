#include "base/mutex.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace base {
namespace {

struct Counter {
    Mutex mutex;
    Condition changed;
    int value BASE_GUARDED_BY(mutex) = 0;

    void Add() {
        const MutexLock lock(mutex);
        ++value;
        changed.NotifyAll();
    }
};

TEST(Mutex, OneThreadAtATimeHasItAndAWaitSeesWhatOthersDid) {
    constexpr int kThreads = 4, kSteps = 1000;
    Counter counter;
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            for (int step = 0; step < kSteps; ++step) counter.Add();
        });
    }
    const MutexLock lock(counter.mutex);
    while (counter.value != kThreads * kSteps) counter.changed.Wait(counter.mutex);
}

TEST(Condition, AWaitWithoutNewsEndsAtItsTimeWithTheMutexHeld) {
    Counter counter;
    const auto time = std::chrono::steady_clock::now() + std::chrono::milliseconds(10);
    {
        const MutexLock lock(counter.mutex);
        while (counter.changed.WaitUntil(counter.mutex, time)) {
        }
        ++counter.value;
    }
    EXPECT_GE(std::chrono::steady_clock::now(), time);
    counter.Add();  // the mutex is free again
    const MutexLock lock(counter.mutex);
    EXPECT_EQ(counter.value, 2);
}

}  // namespace
}  // namespace base
