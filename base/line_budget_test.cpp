#include "base/line_budget.h"

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace base {
namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class LineBudgetTest : public ::testing::Test {
protected:
    // How many of `count` lines were granted.
    int Spend(const std::string& subject, int count, seconds at = seconds(0)) {
        int granted = 0;
        for (int i = 0; i < count; ++i) granted += m_budget.Spend(subject, m_start + at) ? 1 : 0;
        return granted;
    }

    std::vector<std::string> m_told;
    const LineBudget::Clock::time_point m_start{seconds(1000)};
    LineBudget m_budget{{.lines = 3, .span = seconds(10), .subjects = 4},
                        [this](const std::string& subject, std::size_t leftOut) {
                            m_told.push_back(subject + " " + std::to_string(leftOut));
                        }};
};

TEST_F(LineBudgetTest, ASubjectHasItsLinesAndTheOthersHaveTheirs) {
    EXPECT_EQ(Spend("loud", 1000), 3);
    EXPECT_EQ(Spend("quiet", 2), 2);
    EXPECT_THAT(m_told, IsEmpty());
}

TEST_F(LineBudgetTest, AfterItsSpanItHasLinesAgainAndTheCountIsToldOnce) {
    EXPECT_EQ(Spend("loud", 10), 3);
    EXPECT_EQ(Spend("loud", 1, seconds(9)), 0);
    EXPECT_EQ(Spend("loud", 5, seconds(10)), 3);
    EXPECT_THAT(m_told, ElementsAre("loud 8"));
    EXPECT_EQ(Spend("loud", 1, seconds(20)), 1);
    EXPECT_THAT(m_told, ElementsAre("loud 8", "loud 2"));
}

TEST_F(LineBudgetTest, TheCountOfOneThatWentQuietIsToldWithTheNextLineOfAnother) {
    Spend("loud", 4);
    Spend("quiet", 3, seconds(9));
    EXPECT_THAT(m_told, IsEmpty());
    Spend("quiet", 1, seconds(11));
    EXPECT_THAT(m_told, ElementsAre("loud 1"));
    Spend("quiet", 1, seconds(18));
    Spend("another", 1, seconds(19));
    EXPECT_THAT(m_told, ElementsAre("loud 1", "quiet 2"));
}

TEST_F(LineBudgetTest, AtTheEndEveryCountIsTold) {
    Spend("a", 4);
    Spend("b", 5);
    Spend("c", 3);
    m_budget.End();
    EXPECT_THAT(m_told, UnorderedElementsAre("a 1", "b 2"));
    m_budget.End();
    EXPECT_EQ(m_told.size(), 2u);
    EXPECT_EQ(Spend("a", 4), 3);
}

TEST_F(LineBudgetTest, MoreSubjectsThanItKeepsShareOneBudget) {
    for (const char* subject : {"a", "b", "c", "d"}) EXPECT_EQ(Spend(subject, 1), 1);
    EXPECT_EQ(Spend("e", 2) + Spend("f", 2), 3);
    EXPECT_EQ(Spend("a", 3), 2);
    m_budget.End();
    EXPECT_THAT(m_told, UnorderedElementsAre(" 1", "a 1"));
}

TEST_F(LineBudgetTest, ThreadsSpendOneBudget) {
    std::atomic<int> granted{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back([&] { granted += Spend("loud", 100); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(granted, 3);
    m_budget.End();
    EXPECT_THAT(m_told, ElementsAre("loud 397"));
}

}  // namespace
}  // namespace base
