#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "base/thread_annotations.h"

// The standard library's lock, for members that a compiler guards:
//
//     base::Mutex m_mutex;
//     base::Condition m_changed;
//     bool m_ended GUARDED_BY(m_mutex) = false;
//     ...
//     const base::MutexLock lock(m_mutex);
//     while (!m_ended) m_changed.Wait(m_mutex);
namespace base {

class CAPABILITY("mutex") Mutex {
public:
    void Lock() ACQUIRE() { m_mutex.lock(); }
    void Unlock() RELEASE() { m_mutex.unlock(); }

private:
    friend class Condition;
    std::mutex m_mutex;
};

// Holds the mutex while it lives.
class SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& mutex) ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.Lock(); }
    ~MutexLock() RELEASE() { m_mutex.Unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    Mutex& m_mutex;
};

// Something that may have changed under a mutex. Waits may end without a reason: look again.
class Condition {
public:
    void NotifyOne() { m_condition.notify_one(); }
    void NotifyAll() { m_condition.notify_all(); }

    // Gives the mutex up while it waits.
    void Wait(Mutex& mutex) REQUIRES(mutex) {
        std::unique_lock lock(mutex.m_mutex, std::adopt_lock);
        m_condition.wait(lock);
        lock.release();
    }

    // False when that time came first.
    bool WaitUntil(Mutex& mutex, std::chrono::steady_clock::time_point time) REQUIRES(mutex) {
        std::unique_lock lock(mutex.m_mutex, std::adopt_lock);
        const bool woken = m_condition.wait_until(lock, time) == std::cv_status::no_timeout;
        lock.release();
        return woken;
    }

private:
    std::condition_variable m_condition;
};

}  // namespace base
