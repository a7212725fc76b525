#include "wire/out_queue.h"

#include <gtest/gtest.h>

#include "ipc/message_frame.h"
#include "wire/frame.h"

namespace ipc_client {
namespace {

using ipc_test::MessageFrame;

TEST(OutQueue, WhatIsAppendedComesOutInOrderWhateverIsTaken) {
    OutQueue queue;
    std::string expected, written;
    for (int i = 0; i < 100; ++i) {
        const std::string frame = MessageFrame(std::to_string(i));
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
    queue.Append(MessageFrame("one"));
    const std::string_view chunk = queue.Chunk();
    for (int i = 0; i < 1000; ++i) queue.Append(MessageFrame("more"));
    EXPECT_EQ(chunk, MessageFrame("one"));
    EXPECT_EQ(queue.Chunk().data(), chunk.data());
}

}  // namespace
}  // namespace ipc_client
