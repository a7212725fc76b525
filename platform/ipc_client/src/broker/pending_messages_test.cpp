#include "broker/pending_messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ipc_client {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Route kList{1, 10};
constexpr Route kProgress{1, 11};

std::vector<std::string> Take(PendingMessages& pending, std::vector<Route> routes) { return pending.Take(routes); }

TEST(PendingMessages, ARouteTakesItsOwnAlone) {
    PendingMessages pending({});
    pending.Add(kList, "list");
    pending.Add(kProgress, "progress");
    EXPECT_THAT(Take(pending, {kList}), ElementsAre("list"));
    EXPECT_THAT(Take(pending, {kList}), IsEmpty());
    EXPECT_EQ(pending.Count(), 1u);
}

TEST(PendingMessages, RoutesTakenTogetherComeInTheOrderOfArrival) {
    PendingMessages pending({});
    pending.Add(kProgress, "1");
    pending.Add(kList, "2");
    pending.Add(kProgress, "3");
    EXPECT_THAT(Take(pending, {kList, kProgress}), ElementsAre("1", "2", "3"));
}

TEST(PendingMessages, ARouteNamedTwiceGivesItsMessagesOnce) {
    PendingMessages pending({});
    pending.Add(kList, "1");
    EXPECT_THAT(Take(pending, {kList, kList}), ElementsAre("1"));
}

TEST(PendingMessages, TheOldestOfARouteWithTooManyGoes) {
    IPCBrokerLimits limits;
    limits.pendingMessagesPerRoute = 2;
    PendingMessages pending(limits);
    pending.Add(kList, "list");
    EXPECT_THAT(pending.Add(kProgress, "1"), IsEmpty());
    EXPECT_THAT(pending.Add(kProgress, "2"), IsEmpty());
    const auto first = pending.Add(kProgress, "3");
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(first[0].route, kProgress);
    EXPECT_EQ(first[0].soFar, 1u);
    EXPECT_EQ(pending.Add(kProgress, "4").at(0).soFar, 2u);
    EXPECT_THAT(Take(pending, {kList, kProgress}), ElementsAre("list", "3", "4"));
}

TEST(PendingMessages, TheOldestOfARouteWithTooManyBytesGoes) {
    IPCBrokerLimits limits;
    limits.pendingBytesPerRoute = 2 * (kQueuedMessageOverhead + 100);
    PendingMessages pending(limits);
    pending.Add(kProgress, std::string(100, 'a'));
    EXPECT_THAT(pending.Add(kProgress, std::string(100, 'b')), IsEmpty());
    EXPECT_EQ(pending.Add(kProgress, std::string(101, 'c')).size(), 2u);
    EXPECT_THAT(Take(pending, {kProgress}), ElementsAre(std::string(101, 'c')));
}

TEST(PendingMessages, TheOldestOfAllGoesWhenTheTotalIsTooMuch) {
    IPCBrokerLimits limits;
    limits.pendingBytes = 3 * (kQueuedMessageOverhead + 1);
    PendingMessages pending(limits);
    pending.Add(kList, "1");
    pending.Add(kProgress, "2");
    pending.Add(kProgress, "3");
    const auto dropped = pending.Add(kProgress, "4");
    ASSERT_EQ(dropped.size(), 1u);
    EXPECT_EQ(dropped[0].route, kList);
    EXPECT_THAT(Take(pending, {kList, kProgress}), ElementsAre("2", "3", "4"));
}

TEST(PendingMessages, WhatWasTakenMakesRoom) {
    IPCBrokerLimits limits;
    limits.pendingBytes = 2 * (kQueuedMessageOverhead + 1);
    PendingMessages pending(limits);
    for (int round = 0; round < 10; ++round) {
        EXPECT_THAT(pending.Add(kList, "1"), IsEmpty());
        EXPECT_THAT(pending.Add(kList, "2"), IsEmpty());
        EXPECT_THAT(Take(pending, {kList}), ElementsAre("1", "2"));
    }
}

}  // namespace
}  // namespace ipc_client
