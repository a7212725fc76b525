#include "held_sleep.h"

#include <chrono>

#include "kernel/sleep.h"

HeldSleep::HeldSleep() {
    kernel::SetSleeper([this](std::uint32_t milliseconds) { Sleep(milliseconds); });
}

HeldSleep::~HeldSleep() { kernel::SetSleeper({}); }

void HeldSleep::Hold(std::uint32_t milliseconds) {
    const std::lock_guard lock(m_mutex);
    m_held = milliseconds;
}

bool HeldSleep::WaitForSleeper() {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::seconds(30), [this] { return m_sleepers != 0; });
}

void HeldSleep::LetGo() {
    const std::lock_guard lock(m_mutex);
    m_held.reset();
    m_changed.notify_all();
}

void HeldSleep::Sleep(std::uint32_t milliseconds) {
    std::unique_lock lock(m_mutex);
    if (m_held != milliseconds) return;
    ++m_sleepers;
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return m_held != milliseconds; });
    --m_sleepers;
}
