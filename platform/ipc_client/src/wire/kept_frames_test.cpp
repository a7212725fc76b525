#include "wire/kept_frames.h"

#include <gtest/gtest.h>

#include <vector>

#include "ipc/message_frame.h"

namespace ipc_client {
namespace {

using ipc_test::MessageFrame;

std::string Skip(std::uint64_t count) {
    std::string frame;
    AppendSkip(frame, count);
    return frame;
}

std::vector<std::uint64_t> Done(KeptFrames& kept, NumberRange range) {
    std::vector<std::uint64_t> numbers;
    kept.Done(range, [&](std::uint64_t number, std::size_t) { numbers.push_back(number); });
    return numbers;
}

class KeptFramesTest : public ::testing::Test {
protected:
    KeptFramesTest() {
        for (int i = 0; i < 5; ++i) kept.Add(Frame(i));
    }
    static std::string Frame(int i) { return MessageFrame(std::string(static_cast<std::size_t>(i), 'x')); }

    KeptFrames kept;
};

TEST_F(KeptFramesTest, WhatIsNotDoneComesAgainUnderItsNumber) {
    EXPECT_EQ(kept.From(0), Frame(0) + Frame(1) + Frame(2) + Frame(3) + Frame(4));
    EXPECT_EQ(kept.From(3), Frame(3) + Frame(4));
    EXPECT_EQ(kept.From(5), "");
    EXPECT_EQ(Done(kept, {0, 2}), (std::vector<std::uint64_t>{0, 1}));
    EXPECT_EQ(kept.First(), 2u);
    EXPECT_EQ(kept.Next(), 5u);
    EXPECT_EQ(kept.From(2), Frame(2) + Frame(3) + Frame(4));
    EXPECT_EQ(kept.Bytes(), kept.From(2).size());
}

TEST_F(KeptFramesTest, WhatIsDoneBetweenOthersIsSkipped) {
    EXPECT_EQ(Done(kept, {1, 3}), (std::vector<std::uint64_t>{1, 2}));
    EXPECT_EQ(kept.First(), 0u);
    EXPECT_EQ(kept.From(0), Frame(0) + Skip(2) + Frame(3) + Frame(4));
    Done(kept, {4, 5});
    EXPECT_EQ(kept.From(0), Frame(0) + Skip(2) + Frame(3) + Skip(1));
    EXPECT_EQ(Done(kept, {0, 4}), (std::vector<std::uint64_t>{0, 3})) << "each is done once";
    EXPECT_EQ(kept.First(), 5u);
    EXPECT_EQ(kept.Bytes(), 0u);
}

// What is to be sent, all of it.
std::string Send(KeptFrames& kept) {
    std::string sent;
    for (; !kept.Unsent().empty(); kept.SetSent()) sent += kept.Unsent();
    return sent;
}

TEST_F(KeptFramesTest, EachIsSentOnce) {
    EXPECT_EQ(Send(kept), Frame(0) + Frame(1) + Frame(2) + Frame(3) + Frame(4));
    EXPECT_EQ(Send(kept), "");
    kept.Add(Frame(5));
    Done(kept, {0, 3});
    EXPECT_EQ(Send(kept), Frame(5));
    Done(kept, {0, 6});
    kept.Add(Frame(6));
    EXPECT_EQ(Send(kept), Frame(6));
    kept.Add(Frame(7));
    kept.SetAllSent();
    EXPECT_EQ(Send(kept), "");
}

TEST_F(KeptFramesTest, ManyAndLongOnesAreSentAndKeptWhole) {
    std::string all = Send(kept);
    std::string sent = all;
    for (int i = 0; i < 300; ++i) {
        const std::string frame = Frame(i * 700);
        kept.Add(frame);
        all += frame;
        if (i % 7 == 0) sent += Send(kept);
    }
    sent += Send(kept);
    EXPECT_EQ(sent, all);
    EXPECT_EQ(kept.From(0), all);
    Done(kept, {0, 204});
    const std::string left = Frame(199 * 700) + Frame(200 * 700);  // messages 204 and 205, and others
    EXPECT_EQ(kept.From(204).substr(0, left.size()), left);
    for (std::uint64_t i = 204; i < 305; ++i) {
        kept.Add("x");
        Done(kept, {i, i + 1});
        EXPECT_EQ(Send(kept), "x");
    }
    EXPECT_EQ(kept.From(305), std::string(101, 'x'));
}

TEST_F(KeptFramesTest, WhatIsDoneBeforeItIsSentIsNotSent) {
    Done(kept, {0, 3});
    EXPECT_EQ(Send(kept), Frame(3) + Frame(4));
}

TEST_F(KeptFramesTest, NumbersOutsideAreNobodys) {
    EXPECT_EQ(Done(kept, {5, 100}), std::vector<std::uint64_t>());
    Done(kept, {0, 2});
    EXPECT_EQ(Done(kept, {0, 3}), std::vector<std::uint64_t>{2});
}

TEST_F(KeptFramesTest, AreSettledWhenEachIsDoneOrWaits) {
    Done(kept, {0, 3});
    EXPECT_FALSE(kept.IsSettled());
    kept.Wait({3, 4});
    EXPECT_FALSE(kept.IsSettled());
    Done(kept, {4, 5});
    EXPECT_TRUE(kept.IsSettled());
}

TEST_F(KeptFramesTest, DoneMessagesBetweenOthersGiveTheirMemoryBack) {
    const std::string large = MessageFrame(std::string(100000, 'x'));
    for (int i = 0; i < 100; ++i) {
        kept.Add(large);
        Done(kept, {kept.Next() - 1, kept.Next()});
    }
    kept.Add(Frame(7));
    EXPECT_EQ(kept.From(0), Frame(0) + Frame(1) + Frame(2) + Frame(3) + Frame(4) + Skip(100) + Frame(7));
}

TEST_F(KeptFramesTest, OneThatStaysKeepsNoRowOfDoneOnes) {
    for (int i = 0; i < 100000; ++i) {
        kept.Add(Frame(9));
        Done(kept, {kept.Next() - 1, kept.Next()});
    }
    EXPECT_EQ(kept.First(), 0u);
    EXPECT_EQ(kept.From(0), Frame(0) + Frame(1) + Frame(2) + Frame(3) + Frame(4) + Skip(100000));
    EXPECT_EQ(kept.From(3), Frame(3) + Frame(4) + Skip(100000));
    kept.Wait({0, 5});
    EXPECT_TRUE(kept.IsSettled());
    kept.WaitAnew();
    EXPECT_FALSE(kept.IsSettled());
    EXPECT_EQ(Done(kept, {0, 200000}), (std::vector<std::uint64_t>{0, 1, 2, 3, 4}));
    EXPECT_EQ(kept.Bytes(), 0u);
    EXPECT_EQ(kept.First(), kept.Next());
}

TEST(KeptFrames, WhatIsOnlyCountedHasBytesAndNoFrame) {
    KeptFrames kept;
    kept.Count(10);
    kept.Count(20);
    EXPECT_EQ(kept.Bytes(), 30u);
    EXPECT_EQ(kept.FrontBytes(), 10u);
    Done(kept, {0, 1});
    EXPECT_EQ(kept.Bytes(), 20u);
    EXPECT_EQ(kept.First(), 1u);
}

}  // namespace
}  // namespace ipc_client
