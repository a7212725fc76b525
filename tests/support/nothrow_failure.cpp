#include "nothrow_failure.h"

#include <atomic>
#include <new>

namespace {
constexpr std::size_t kAbsurdSize = std::size_t{1} << 36;  // [bytes]

std::atomic<std::size_t> lastArraySize{0};
std::atomic<int> untilFailure{0};  // 0: none is asked for, or it has happened

bool FailsNow() {
    int left = untilFailure.load();
    while (left > 0 && !untilFailure.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
}
}  // namespace

NothrowFailure::NothrowFailure(int nth) { untilFailure = nth; }
NothrowFailure::~NothrowFailure() { untilFailure = 0; }
bool NothrowFailure::Happened() const { return untilFailure == 0; }
std::size_t NothrowFailure::LastArraySize() { return lastArraySize; }

// The linker hands every call of the program's own objects to __wrap_NAME, and has the allocation function itself as
// __real_NAME: replacing the functions would collide with ThreadSanitizer's. An absurd size throws under
// AddressSanitizer too, which otherwise ends the program.
#if defined(_WIN64)  // the size's type is part of the decorated names
#define __real__Znwm __real__Znwy
#define __real__ZnwmRKSt9nothrow_t __real__ZnwyRKSt9nothrow_t
#define __real__ZnamRKSt9nothrow_t __real__ZnayRKSt9nothrow_t
#define __wrap__Znwm __wrap__Znwy
#define __wrap__ZnwmRKSt9nothrow_t __wrap__ZnwyRKSt9nothrow_t
#define __wrap__ZnamRKSt9nothrow_t __wrap__ZnayRKSt9nothrow_t
#endif
extern "C" {
#pragma GCC visibility push(default)  // the linker wants it for what shared libraries call too
void* __real__Znwm(std::size_t size);
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;
void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept;

void* __wrap__Znwm(std::size_t size) {
    if (size > kAbsurdSize) throw std::bad_alloc();
    return __real__Znwm(size);
}

void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
    return FailsNow() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}

void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) noexcept {
    lastArraySize = size;
    return FailsNow() ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}
#pragma GCC visibility pop
}
