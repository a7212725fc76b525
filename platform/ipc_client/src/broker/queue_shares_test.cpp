#include "broker/queue_shares.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace ipc_client {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

std::vector<std::pair<unsigned, std::size_t>> ShrinkTo(QueueShares& shares, std::size_t left) {
    std::vector<std::pair<unsigned, std::size_t>> taken;
    shares.ShrinkTo(left, [&](QueueShares::Share share) { taken.emplace_back(share.sender, share.bytes); });
    return taken;
}

TEST(QueueShares, WhatIsTakenIsOfThoseWhoQueuedFirst) {
    QueueShares shares;
    shares.Queued({1, 10});
    shares.Queued({1, 5});
    shares.Queued({2, 10});
    shares.Queued({1, 10});
    EXPECT_EQ(shares.Bytes(), 35u);
    EXPECT_THAT(ShrinkTo(shares, 35), ElementsAre());
    EXPECT_THAT(ShrinkTo(shares, 30), ElementsAre(Pair(1u, 5u)));
    EXPECT_THAT(ShrinkTo(shares, 12), ElementsAre(Pair(1u, 10u), Pair(2u, 8u)));
    EXPECT_THAT(ShrinkTo(shares, 0), ElementsAre(Pair(2u, 2u), Pair(1u, 10u)));
    EXPECT_EQ(shares.Bytes(), 0u);
}

}  // namespace
}  // namespace ipc_client
