#pragma once

#include <cstdint>
#include <utility>

namespace base {

// Something that the system has opened for this process, closed at the owner's end: a file descriptor on Linux, a
// HANDLE on Windows. What the system answers when it opened nothing (-1; on Windows also null) is no handle.
class OwnedHandle {
public:
    OwnedHandle() = default;
    explicit OwnedHandle(int descriptor) : m_value(descriptor) {}
    explicit OwnedHandle(void* handle) : m_value(handle == nullptr ? kNone : reinterpret_cast<std::intptr_t>(handle)) {}
    ~OwnedHandle() { Close(); }
    OwnedHandle(OwnedHandle&& other) noexcept : m_value(std::exchange(other.m_value, kNone)) {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept {
        Close();
        m_value = std::exchange(other.m_value, kNone);
        return *this;
    }

    explicit operator bool() const { return m_value != kNone; }
    int Descriptor() const { return static_cast<int>(m_value); }
    void* Handle() const { return m_value == kNone ? nullptr : reinterpret_cast<void*>(m_value); }

    // Closes it now. False when the system says that what was written before has been lost, or that it was not open.
    bool Close() noexcept { return m_value == kNone || CloseValue(std::exchange(m_value, kNone)); }

    // Gives the handle away: whoever gets it closes it.
    int ReleaseDescriptor() { return static_cast<int>(std::exchange(m_value, kNone)); }
    void* ReleaseHandle() {
        void* const handle = Handle();
        m_value = kNone;
        return handle;
    }

private:
    static constexpr std::intptr_t kNone = -1;
    static bool CloseValue(std::intptr_t value) noexcept;

    std::intptr_t m_value = kNone;
};

}  // namespace base
