#include "wire/out_queue.h"

#include <gtest/gtest.h>

#include "wire/frame.h"

namespace ipc_client {
namespace {

std::string Message(std::string data) {
    TagIPCMessageItem item;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    std::string frame;
    AppendMessage(frame, item);
    return frame;
}

std::string Announcement() {
    const Route route{1, 2};
    std::string frame;
    AppendRoutes(frame, FrameType::kAnnounce, {&route, 1});
    return frame;
}

TEST(OutQueue, WhatIsAppendedComesOutInOrderWhateverIsTaken) {
    OutQueue queue;
    std::string expected, written;
    for (int i = 0; i < 100; ++i) {
        const std::string frame = Message(std::to_string(i));
        queue.Append(frame);
        expected += frame;
        const std::string_view part = queue.Chunk().substr(0, 17);
        written += part;
        queue.Written(part.size());
        EXPECT_EQ(queue.Bytes(), expected.size() - written.size());
    }
    while (!queue.Chunk().empty()) {
        written += queue.Chunk();
        queue.Written(queue.Chunk().size());
    }
    EXPECT_EQ(written, expected);
    EXPECT_EQ(queue.Bytes(), 0u);
}

TEST(OutQueue, AChunkStaysWhereItIsWhileMoreIsAppended) {
    OutQueue queue;
    queue.Append(Message("one"));
    const std::string_view chunk = queue.Chunk();
    for (int i = 0; i < 1000; ++i) queue.Append(Message("more"));
    EXPECT_EQ(chunk, Message("one"));
    EXPECT_EQ(queue.Chunk().data(), chunk.data());
}

TEST(OutQueue, MessagesNotWrittenToTheirEndAreGivenBackWhole) {
    const std::string one = Message("one"), two = Message("two"), three = Message("three");
    for (std::size_t written = 0; written <= one.size() + two.size(); ++written) {
        OutQueue queue;
        queue.Append(one + two);
        queue.Chunk();
        queue.Written(written);
        queue.Append(three);
        const std::string expected = written < one.size()                ? one + two + three
                                     : written < one.size() + two.size() ? two + three
                                                                         : three;
        EXPECT_EQ(queue.TakeMessages(), expected) << written;
        EXPECT_EQ(queue.Bytes(), 0u);
    }
}

TEST(OutQueue, AnnouncementsAreNotGivenBack) {
    OutQueue queue;
    queue.Append(Announcement() + Message("one"));
    queue.Chunk();
    queue.Append(Announcement() + Message("two"));
    EXPECT_EQ(queue.TakeMessages(), Message("one") + Message("two"));
}

}  // namespace
}  // namespace ipc_client
