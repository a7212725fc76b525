#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

// What Clang's thread-safety analysis is told (-Wthread-safety); nothing for other compilers.
#if defined(__clang__)
#define BASE_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define BASE_THREAD_ANNOTATION(attribute)
#endif

#define BASE_CAPABILITY(name) BASE_THREAD_ANNOTATION(capability(name))  // a class that is a lock
#define BASE_SCOPED_CAPABILITY BASE_THREAD_ANNOTATION(scoped_lockable)  // a class that holds one while it lives
#define BASE_GUARDED_BY(lock) BASE_THREAD_ANNOTATION(guarded_by(lock))  // a member that is only used with the lock held
#define BASE_REQUIRES(lock) BASE_THREAD_ANNOTATION(requires_capability(lock))  // a function that is called with it held
#define BASE_ASSERT_CAPABILITY(lock) BASE_THREAD_ANNOTATION(assert_capability(lock))  // returns only where it is held
#define BASE_ACQUIRE(...) BASE_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define BASE_RELEASE(...) BASE_THREAD_ANNOTATION(release_capability(__VA_ARGS__))

// The standard library's lock, for members that a compiler guards:
//
//     base::Mutex m_mutex;
//     base::Condition m_changed;
//     bool m_ended BASE_GUARDED_BY(m_mutex) = false;
//     ...
//     const base::MutexLock lock(m_mutex);
//     while (!m_ended) m_changed.Wait(m_mutex);
namespace base {

class BASE_CAPABILITY("mutex") Mutex {
public:
    void Lock() BASE_ACQUIRE() { m_mutex.lock(); }
    void Unlock() BASE_RELEASE() { m_mutex.unlock(); }

private:
    friend class Condition;
    std::mutex m_mutex;
};

// Holds the mutex while it lives.
class BASE_SCOPED_CAPABILITY MutexLock {
public:
    explicit MutexLock(Mutex& mutex) BASE_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.Lock(); }
    ~MutexLock() BASE_RELEASE() { m_mutex.Unlock(); }
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
    void Wait(Mutex& mutex) BASE_REQUIRES(mutex) {
        std::unique_lock lock(mutex.m_mutex, std::adopt_lock);
        m_condition.wait(lock);
        lock.release();
    }

    // False when that time came first.
    bool WaitUntil(Mutex& mutex, std::chrono::steady_clock::time_point time) BASE_REQUIRES(mutex) {
        std::unique_lock lock(mutex.m_mutex, std::adopt_lock);
        const bool woken = m_condition.wait_until(lock, time) == std::cv_status::no_timeout;
        lock.release();
        return woken;
    }

private:
    std::condition_variable m_condition;
};

}  // namespace base
