#include "kernel/ui_turn.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <optional>
#include <thread>
#include <vector>

#include "wait_until.h"

namespace kernel {
namespace {

using std::chrono::seconds;

// Waits until that many threads stand in the queue for the turn; false when they do not come.
bool Queued(std::size_t count) {
    return test_support::WaitUntil([&] { return UiTurn::Waiting() == count; });
}

// Another thread that asks for the turn once and tells whether it got it. Is joined at destruction, so it must
// outlive the turns of the thread that made it.
class Asker {
public:
    Asker()
        : m_thread([this] {
              const UiTurn turn;
              m_gotIt.set_value();
          }) {}
    bool GetsTheTurn() { return m_future.wait_for(seconds(10)) == std::future_status::ready; }
    bool HasIt() { return m_future.wait_for(seconds(0)) == std::future_status::ready; }

private:
    std::promise<void> m_gotIt;
    std::future<void> m_future = m_gotIt.get_future();
    std::jthread m_thread;
};

TEST(UiTurn, IsHeldFromConstructionToDestructionByThisThreadOnly) {
    EXPECT_FALSE(UiTurn::IsHeld());
    {
        const UiTurn turn;
        EXPECT_TRUE(UiTurn::IsHeld());
        EXPECT_FALSE(std::async(std::launch::async, UiTurn::IsHeld).get());
    }
    EXPECT_FALSE(UiTurn::IsHeld());
}

TEST(UiTurn, OneThreadAtATimeHasIt) {
    int plain = 0;  // a data race if two threads had the turn
    std::atomic<int> inside = 0;
    std::atomic<bool> together = false;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                for (int step = 0; step < 2000; ++step) {
                    const UiTurn turn;
                    if (++inside != 1) together = true;
                    ++plain;
                    --inside;
                }
            });
        }
    }
    EXPECT_FALSE(together);
    EXPECT_EQ(plain, 8000);
    EXPECT_EQ(UiTurn::Waiting(), 0u);
}

TEST(UiTurn, TheSameThreadMayTakeItAgainAndGivesItBackWithTheLastLevel) {
    std::optional<Asker> other;
    {
        const UiTurn outer;
        {
            const UiTurn inner;
            other.emplace();
            ASSERT_TRUE(Queued(1));
        }
        EXPECT_TRUE(UiTurn::IsHeld());
        EXPECT_EQ(UiTurn::Waiting(), 1u);
        EXPECT_FALSE(other->HasIt());
    }
    EXPECT_TRUE(other->GetsTheTurn());
}

TEST(UiTurn, APauseFreesItAtAnyDepthAndTakesItAgainAsDeep) {
    std::optional<Asker> second;
    {
        const UiTurn outer;
        {
            const UiTurn inner;
            {
                const UiTurnPause pause;
                EXPECT_FALSE(UiTurn::IsHeld());
                Asker first;
                EXPECT_TRUE(first.GetsTheTurn());
            }
            EXPECT_TRUE(UiTurn::IsHeld());
            second.emplace();
            ASSERT_TRUE(Queued(1));
        }
        EXPECT_TRUE(UiTurn::IsHeld());
        EXPECT_FALSE(second->HasIt());  // one level is still held
    }
    EXPECT_FALSE(UiTurn::IsHeld());
    EXPECT_TRUE(second->GetsTheTurn());
}

TEST(UiTurn, APausedThreadMayTakeItInsideThePause) {
    const UiTurn outer;
    const UiTurnPause pause;
    {
        const UiTurn again;
        EXPECT_TRUE(UiTurn::IsHeld());
    }
    EXPECT_FALSE(UiTurn::IsHeld());
}

TEST(UiTurn, APauseWithoutTheTurnDoesNothing) {
    const UiTurnPause pause;
    EXPECT_FALSE(UiTurn::IsHeld());
    Asker other;
    EXPECT_TRUE(other.GetsTheTurn());
}

TEST(UiTurn, IsGrantedInTheOrderInWhichItWasAskedFor) {
    std::vector<int> order;
    std::vector<std::jthread> threads;
    {
        const UiTurn turn;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&order, i] {
                const UiTurn mine;
                order.push_back(i);
            });
            ASSERT_TRUE(Queued(static_cast<std::size_t>(i) + 1));
        }
    }
    threads.clear();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(UiTurn, WhoAsksAgainStandsBehindThoseWhoWait) {
    std::optional<Asker> other;
    std::optional<UiTurn> turn(std::in_place);
    other.emplace();
    ASSERT_TRUE(Queued(1));
    turn.reset();
    turn.emplace();  // waits until the other had its turn
    EXPECT_TRUE(other->HasIt());
}

}  // namespace
}  // namespace kernel
