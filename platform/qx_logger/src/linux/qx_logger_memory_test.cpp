#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <sstream>
#include <string>

#include "qx_logger/qx_logger.h"

// In a program of its own: it replaces the allocation functions, for the library too.
namespace {

std::atomic<int> untilFailure{0};  // 0: none is asked for, or it has happened

void* Allocate(std::size_t size) {
    int left = untilFailure.load();
    while (left > 0 && !untilFailure.compare_exchange_weak(left, left - 1)) {
    }
    void* const memory = left == 1 ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

TEST(LoggerWithoutMemory, ALineThatFindsNoneIsDroppedWhereverItFails) {
    QxLogger* const logger = QxLogger::GetInstance();
    std::wstringstream line;
    line << std::wstring(300, L'x');  // longer than what is kept without an allocation
    testing::internal::CaptureStderr();
    int failures = 0;
    for (;; ++failures) {
        ASSERT_LT(failures, 1000);
        untilFailure = failures + 1;
        EXPECT_NO_THROW(logger->Log(LOG_LEVEL_EVENT, line)) << "the allocation " << failures + 1;
        if (untilFailure.exchange(0) != 0) break;  // it needed fewer
    }
    EXPECT_GE(failures, 3);
    const std::string written = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(written.ends_with(std::string(300, 'x') + "\n")) << "the last line had all that it needed";
}

}  // namespace
