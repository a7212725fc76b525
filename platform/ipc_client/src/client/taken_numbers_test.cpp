#include "client/taken_numbers.h"

#include <gtest/gtest.h>

namespace ipc_client {
namespace {

TEST(TakenNumbers, EachIsTakenOnceInWhateverOrder) {
    TakenNumbers taken;
    for (const std::uint64_t number : {3, 4, 5, 9, 0, 7, 1, 6}) {
        EXPECT_TRUE(taken.Add(number)) << number;
        EXPECT_FALSE(taken.Add(number)) << number;
    }
    for (const std::uint64_t number : {0, 1, 3, 4, 5, 6, 7, 9}) EXPECT_FALSE(taken.Add(number)) << number;
    for (const std::uint64_t number : {2, 8, 10}) EXPECT_TRUE(taken.Add(number)) << number;
    for (std::uint64_t number = 0; number <= 10; ++number) EXPECT_FALSE(taken.Add(number)) << number;
}

TEST(TakenNumbers, WhatDoesNotComeAgainNeedNotBeKnown) {
    TakenNumbers taken;
    for (const std::uint64_t number : {0, 1, 3, 5, 6}) taken.Add(number);
    taken.ForgetBefore(4);
    EXPECT_FALSE(taken.Add(5));
    EXPECT_FALSE(taken.Add(6));
    EXPECT_TRUE(taken.Add(3));
    taken.ForgetBefore(7);
    EXPECT_TRUE(taken.Add(5));
}

}  // namespace
}  // namespace ipc_client
