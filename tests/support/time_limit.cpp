// Every program of tests has a limit for each of its tests: one that waits for what never comes ends the program, and
// is named, instead of hanging the run.
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace {

constexpr std::chrono::seconds kLongestTest{240};  // more than any one wait, less than a program has

class TimeLimit : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& test) override {
        m_ended = false;
        m_watcher = std::thread([this, &test] { Watch(test); });
    }

    void OnTestEnd(const testing::TestInfo&) override {
        {
            const std::lock_guard lock(m_mutex);
            m_ended = true;
        }
        m_changed.notify_one();
        m_watcher.join();
    }

    void Watch(const testing::TestInfo& test) {
        std::unique_lock lock(m_mutex);
        if (m_changed.wait_for(lock, kLongestTest, [this] { return m_ended; })) return;
        std::fprintf(stderr, "%s.%s does not end\n", test.test_suite_name(), test.name());
        std::abort();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_ended = false;
    std::thread m_watcher;
};

[[maybe_unused]] const bool kIsListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new TimeLimit);  // the list owns it
    return true;
}();

}  // namespace
