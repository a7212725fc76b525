#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>

// While it lives, page code's sleeps take no time, or as long as the test wants. Any thread. Sleeps that have begun
// must have ended when it goes.
class HeldSleep {
public:
    HeldSleep();
    ~HeldSleep();
    HeldSleep(const HeldSleep&) = delete;
    HeldSleep& operator=(const HeldSleep&) = delete;

    // From now on a sleep of that many milliseconds lasts until LetGo.
    void Hold(std::uint32_t milliseconds);

    // Returns when a thread is in a sleep that is held; false when none comes.
    bool WaitForSleeper();

    // Ends every sleep; later ones take no time.
    void LetGo();

private:
    void Sleep(std::uint32_t milliseconds);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<std::uint32_t> m_held;  // [ms]
    int m_sleepers = 0;                   // in a sleep that is held
};
