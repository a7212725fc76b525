#include "broker/pending_messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ipc_client {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Route kList{1, 10};
constexpr Route kProgress{1, 11};

constexpr unsigned kOne = 1, kOther = 2;  // senders

Origin From(unsigned peer) {
    Origin origin;
    origin.peer = peer;
    return origin;
}

std::vector<std::string> Take(
    PendingMessages& pending, std::vector<Route> routes,
    const std::function<bool(unsigned)>& isFor = [](unsigned) { return true; }) {
    std::vector<std::string> frames;
    for (const PendingMessages::Taken& taken : pending.Take(routes, isFor)) frames.push_back(taken.body);
    return frames;
}

TEST(PendingMessages, ARouteTakesItsOwnOnly) {
    PendingMessages pending({});
    pending.Add(kList, kOne, From(kOne), "list");
    pending.Add(kProgress, kOne, From(kOne), "progress");
    EXPECT_THAT(Take(pending, {kList}), ElementsAre("list"));
    EXPECT_THAT(Take(pending, {kList}), IsEmpty());
    EXPECT_EQ(pending.Count(), 1u);
}

TEST(PendingMessages, RoutesTakenTogetherComeInTheOrderOfArrival) {
    PendingMessages pending({});
    pending.Add(kProgress, kOne, From(kOne), "1");
    pending.Add(kList, kOther, From(kOther), "2");
    pending.Add(kProgress, kOne, From(kOne), "3");
    EXPECT_THAT(Take(pending, {kList, kProgress}), ElementsAre("1", "2", "3"));
}

TEST(PendingMessages, ARouteNamedTwiceGivesItsMessagesOnce) {
    PendingMessages pending({});
    pending.Add(kList, kOne, From(kOne), "1");
    EXPECT_THAT(Take(pending, {kList, kList}), ElementsAre("1"));
}

TEST(PendingMessages, OnlyTheSendersThatAreAskedForAreTaken) {
    PendingMessages pending({});
    pending.Add(kList, kOne, From(kOne), "1");
    pending.Add(kList, kOther, From(kOther), "2");
    pending.Add(kList, kOne, From(kOne), "3");
    const auto taken = pending.Take(std::vector{kList}, [](unsigned sender) { return sender == kOther; });
    ASSERT_EQ(taken.size(), 1u);
    EXPECT_EQ(taken[0].origin.peer, kOther);
    EXPECT_EQ(taken[0].body, "2");
    EXPECT_THAT(Take(pending, {kList}), ElementsAre("1", "3"));
}

TEST(PendingMessages, TheOldestOfASenderWithTooManyGoesAndNobodyElses) {
    IPCBrokerLimits limits;
    limits.pendingMessagesPerSender = 2;
    PendingMessages pending(limits);
    pending.Add(kList, kOther, From(kOther), "list");
    EXPECT_THAT(pending.Add(kProgress, kOne, From(kOne), "1"), IsEmpty());
    EXPECT_THAT(pending.Add(kProgress, kOne, From(kOne), "2"), IsEmpty());
    const auto first = pending.Add(kList, kOne, From(kOne), "3");
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(first[0].route, kProgress);
    EXPECT_EQ(first[0].soFar, 1u);
    EXPECT_EQ(pending.Add(kProgress, kOne, From(kOne), "4").at(0).soFar, 2u);
    EXPECT_THAT(Take(pending, {kList, kProgress}), ElementsAre("list", "3", "4"));
}

TEST(PendingMessages, TheOldestOfASenderWithTooManyBytesGoes) {
    IPCBrokerLimits limits;
    limits.pendingBytesPerSender = 2 * (kPendingMessageOverhead + 100);
    PendingMessages pending(limits);
    pending.Add(kProgress, kOne, From(kOne), std::string(100, 'a'));
    EXPECT_THAT(pending.Add(kProgress, kOne, From(kOne), std::string(100, 'b')), IsEmpty());
    EXPECT_EQ(pending.Add(kProgress, kOne, From(kOne), std::string(101, 'c')).size(), 2u);
    EXPECT_THAT(Take(pending, {kProgress}), ElementsAre(std::string(101, 'c')));
}

TEST(PendingMessages, WhenAllTogetherAreTooManyTheSenderWithMostPays) {
    IPCBrokerLimits limits;
    limits.pendingBytes = 3 * (kPendingMessageOverhead + 1);
    PendingMessages pending(limits);
    EXPECT_THAT(pending.Add(kList, kOther, From(kOther), "0"), IsEmpty());
    for (const char* frame : {"1", "2"}) EXPECT_THAT(pending.Add(kProgress, kOne, From(kOne), frame), IsEmpty());
    EXPECT_EQ(pending.Add(kProgress, kOne, From(kOne), "3").at(0).route, kProgress);
    EXPECT_THAT(Take(pending, {kList, kProgress}), ElementsAre("0", "2", "3"));
}

TEST(PendingMessages, WhatWasTakenMakesRoom) {
    IPCBrokerLimits limits;
    limits.pendingBytes = 2 * (kPendingMessageOverhead + 1);
    PendingMessages pending(limits);
    for (int round = 0; round < 10; ++round) {
        EXPECT_THAT(pending.Add(kList, kOne, From(kOne), "1"), IsEmpty());
        EXPECT_THAT(pending.Add(kList, kOne, From(kOne), "2"), IsEmpty());
        EXPECT_THAT(Take(pending, {kList}), ElementsAre("1", "2"));
    }
}

TEST(PendingMessages, TheNumbersOfAPeersMessagesAreThoseThatWait) {
    PendingMessages pending({});
    const auto add = [&](Route route, unsigned peer, std::uint64_t number) {
        Origin origin = From(peer);
        origin.stamp.number = number;
        pending.Add(route, kOne, origin, "");
    };
    for (const std::uint64_t number : {3, 4, 6}) add(kList, kOne, number);
    add(kProgress, kOne, 7);
    add(kList, kOther, 5);
    EXPECT_THAT(pending.NumbersOf(kOne, kOne), ElementsAre(NumberRange{3, 5}, NumberRange{6, 8}));
    EXPECT_THAT(pending.NumbersOf(kOther, kOne), ElementsAre(NumberRange{5, 6}));
    EXPECT_THAT(pending.NumbersOf(kOther, kOther), IsEmpty());
    Take(pending, {kProgress});
    EXPECT_THAT(pending.NumbersOf(kOne, kOne), ElementsAre(NumberRange{3, 5}, NumberRange{6, 7}));
}

}  // namespace
}  // namespace ipc_client
