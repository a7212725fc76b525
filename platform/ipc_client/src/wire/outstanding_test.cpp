#include "wire/outstanding.h"

#include <gmock/gmock.h>

namespace ipc_client {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Outstanding, AMessageIsDoneWhenNobodyHoldsItAnyMore) {
    Outstanding messages;
    EXPECT_EQ(messages.Begin(), 0u);
    messages.Hold(0);
    messages.Release(0);
    EXPECT_THAT(messages.TakeDone(), IsEmpty());
    messages.Release(0);
    EXPECT_THAT(messages.TakeDone(), ElementsAre(NumberRange{0, 1}));
    EXPECT_THAT(messages.TakeDone(), IsEmpty());
    EXPECT_TRUE(messages.Empty());
    EXPECT_EQ(messages.Next(), 1u);
}

TEST(Outstanding, NeighboursAreToldAsOneRange) {
    Outstanding messages;
    for (int i = 0; i < 6; ++i) messages.Begin();
    for (const std::uint64_t number : {1u, 2u, 4u, 3u}) messages.Release(number);
    EXPECT_THAT(messages.TakeDone(), ElementsAre(NumberRange{1, 3}, NumberRange{4, 5}, NumberRange{3, 4}));
    EXPECT_EQ(messages.First(), 0u);
    messages.Release(0);
    EXPECT_EQ(messages.First(), 5u);
}

TEST(Outstanding, AllThatIsDoneCanBeToldAgain) {
    Outstanding messages;
    messages.StartAt(10);
    for (int i = 0; i < 5; ++i) messages.Begin();
    for (const std::uint64_t number : {10u, 12u, 13u}) messages.Release(number);
    EXPECT_THAT(messages.DoneFrom(10), ElementsAre(NumberRange{10, 11}, NumberRange{12, 14}));
    EXPECT_THAT(messages.DoneFrom(8), ElementsAre(NumberRange{8, 11}, NumberRange{12, 14}));
    EXPECT_THAT(messages.DoneFrom(13), ElementsAre(NumberRange{13, 14}));
    EXPECT_THAT(messages.DoneFrom(15), IsEmpty());
}

TEST(Outstanding, SkippedMessagesAreDoneAndNotTold) {
    Outstanding messages;
    messages.Skip(3);
    EXPECT_EQ(messages.Begin(), 3u);
    messages.Skip(2);
    EXPECT_EQ(messages.Begin(), 6u);
    EXPECT_THAT(messages.TakeDone(), IsEmpty());
    messages.Release(3);
    EXPECT_EQ(messages.First(), 6u);
}

TEST(Outstanding, OneThatStaysKeepsNoRowOfDoneOnes) {
    Outstanding messages;
    messages.Begin();
    for (std::uint64_t number = 1; number < 100000; ++number) {
        messages.Release(messages.Begin());
        EXPECT_EQ(messages.Next(), number + 1);
    }
    EXPECT_EQ(messages.First(), 0u);
    EXPECT_THAT(messages.DoneFrom(0), ElementsAre(NumberRange{1, 100000}));
    EXPECT_THAT(messages.TakeDone(), ElementsAre(NumberRange{1, 100000}));
    messages.Hold(0);
    messages.Release(0);
    EXPECT_FALSE(messages.Empty());
    messages.Release(0);
    EXPECT_THAT(messages.TakeDone(), ElementsAre(NumberRange{0, 1}));
    EXPECT_TRUE(messages.Empty());
    EXPECT_EQ(messages.First(), 100000u);
}

}  // namespace
}  // namespace ipc_client
