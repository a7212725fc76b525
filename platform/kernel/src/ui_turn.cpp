#include "kernel/ui_turn.h"

#include "base/mutex.h"

namespace kernel {
namespace {

// How deep this thread holds the turn; 0 on a thread that does not hold it.
thread_local unsigned t_depth = 0;

// A lock that is handed from its holder straight to whoever has waited longest, so nobody can overtake. Waiters stand
// on their own stacks: taking the turn allocates nothing and cannot fail.
class FairLock {
public:
    void Acquire() {
        const base::MutexLock lock(m_mutex);
        if (!m_held) {
            m_held = true;
            return;
        }
        Waiter self;
        (m_last ? m_last->next : m_first) = &self;
        m_last = &self;
        ++m_waiting;
        while (!self.granted) self.wake.Wait(m_mutex);
    }

    void Release() {
        const base::MutexLock lock(m_mutex);
        if (!m_first) {
            m_held = false;
            return;
        }
        Waiter& next = *m_first;
        m_first = next.next;
        if (!m_first) m_last = nullptr;
        --m_waiting;
        next.granted = true;
        next.wake.NotifyOne();  // under the mutex: once it is free, `next` may be gone
    }

    std::size_t Waiting() {
        const base::MutexLock lock(m_mutex);
        return m_waiting;
    }

private:
    struct Waiter {
        base::Condition wake;
        bool granted = false;
        Waiter* next = nullptr;
    };

    base::Mutex m_mutex;
    bool m_held BASE_GUARDED_BY(m_mutex) = false;
    Waiter* m_first BASE_GUARDED_BY(m_mutex) = nullptr;  // has waited longest
    Waiter* m_last BASE_GUARDED_BY(m_mutex) = nullptr;
    std::size_t m_waiting BASE_GUARDED_BY(m_mutex) = 0;
};

// Never destroyed: delivery threads may still ask for the turn while the process exits.
FairLock& Turn() {
    static FairLock& lock = *new FairLock;
    return lock;
}

}  // namespace

UiTurn::UiTurn() {
    if (t_depth == 0) Turn().Acquire();
    ++t_depth;
}

UiTurn::~UiTurn() {
    if (--t_depth == 0) Turn().Release();
}

bool UiTurn::IsHeld() { return t_depth != 0; }

std::size_t UiTurn::Waiting() { return Turn().Waiting(); }

UiTurnPause::UiTurnPause() : m_depth(t_depth) {
    if (m_depth == 0) return;
    t_depth = 0;
    Turn().Release();
}

UiTurnPause::~UiTurnPause() {
    if (m_depth == 0) return;
    Turn().Acquire();
    t_depth = m_depth;
}

}  // namespace kernel
