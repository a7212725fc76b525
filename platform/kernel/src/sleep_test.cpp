#include "kernel/sleep.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <vector>

#include "kernel/ui_turn.h"

namespace kernel {
namespace {

// Leaves the process with the real time.
class Sleeper : public testing::Test {
protected:
    ~Sleeper() override { SetSleeper({}); }
};

TEST_F(Sleeper, IsAskedForEachSleepInsteadOfTheTime) {
    std::vector<std::uint32_t> asked;
    SetSleeper([&](std::uint32_t milliseconds) { asked.push_back(milliseconds); });
    Sleep(0xFFFFFFFF);
    Sleep(0);
    EXPECT_EQ(asked, (std::vector<std::uint32_t>{0xFFFFFFFF, 0}));
}

TEST_F(Sleeper, RunsWithoutTheTurnWhichIsHeldAgainAfterwards) {
    bool held = true;
    SetSleeper([&](std::uint32_t) { held = UiTurn::IsHeld(); });
    const UiTurn outer;
    const UiTurn inner;
    Sleep(1);
    EXPECT_FALSE(held);
    EXPECT_TRUE(UiTurn::IsHeld());
}

TEST_F(Sleeper, MayThrowAndTheTurnIsHeldAgainAllTheSame) {
    SetSleeper([](std::uint32_t) { throw std::runtime_error("woken"); });
    const UiTurn turn;
    EXPECT_THROW(Sleep(1), std::runtime_error);
    EXPECT_TRUE(UiTurn::IsHeld());
}

TEST_F(Sleeper, MayBeReplacedFromWithinItself) {
    int first = 0, second = 0;
    SetSleeper([&, alive = std::vector<int>(1, 7)](std::uint32_t) {
        SetSleeper([&](std::uint32_t) { ++second; });
        first += alive[0];  // what it holds is still there
    });
    Sleep(1);
    Sleep(1);
    EXPECT_EQ(first, 7);
    EXPECT_EQ(second, 1);
}

TEST_F(Sleeper, IsTheTimeItselfUnlessSetAndWhenTakenAway) {
    for (const bool wasSet : {false, true}) {
        if (wasSet) {
            SetSleeper([](std::uint32_t) {});
            SetSleeper({});
        }
        const auto begin = std::chrono::steady_clock::now();
        Sleep(20);
        EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(20)) << wasSet;
    }
}

}  // namespace
}  // namespace kernel
