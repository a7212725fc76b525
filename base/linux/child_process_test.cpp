#include "base/child_process.h"

#include <gtest/gtest.h>

#include <ctime>

namespace base {
namespace {

TEST(ChildProcess, IsWaitedForWithoutProcessorTime) {
    const std::clock_t before = std::clock();
    ChildProcess child({.command = ShellCommand("sleep 0.5", "sleeper")});
    EXPECT_TRUE(child.WaitForEnd().IsSuccess());
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 5);
}

}  // namespace
}  // namespace base
