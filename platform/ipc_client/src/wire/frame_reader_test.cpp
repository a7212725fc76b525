#include "wire/frame_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "ipc/message_frame.h"

namespace ipc_client {
namespace {

using ipc_test::MessageFrame;

void Feed(FrameReader& reader, std::string_view bytes) {
    while (!bytes.empty()) {
        const std::span<char> space = reader.Space();
        const std::size_t count = std::min(space.size(), bytes.size());
        std::copy_n(bytes.data(), count, space.data());
        reader.Commit(count);
        bytes.remove_prefix(count);
    }
}

TEST(FrameReader, BytesThatComeOneByOneMakeTheSameFrames) {
    std::string stream;
    AppendHello(stream);
    const Route route{1, 2};
    AppendRoutes(stream, FrameType::kAnnounce, {&route, 1});
    stream += MessageFrame("one");
    stream += MessageFrame("");

    FrameReader reader;
    std::vector<std::pair<FrameType, std::string>> frames;
    for (std::size_t i = 0; i < stream.size(); ++i) {
        Feed(reader, std::string_view(stream).substr(i, 1));
        EXPECT_EQ(reader.TakeHello(), i + 1 >= kHelloBytes);
        if (!reader.TakeHello()) continue;
        while (const auto frame = reader.Next()) frames.emplace_back(frame->type, frame->whole);
    }
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0].first, FrameType::kAnnounce);
    EXPECT_EQ(frames[1].second, MessageFrame("one"));
    EXPECT_EQ(frames[2].second, MessageFrame(""));
}

TEST(FrameReader, AFrameCutAtAnyLengthIsNotYetAFrame) {
    const std::string frame = MessageFrame("payload");
    for (std::size_t length = 0; length < frame.size(); ++length) {
        FrameReader reader;
        Feed(reader, std::string_view(frame).substr(0, length));
        EXPECT_FALSE(reader.Next().has_value()) << length;
        Feed(reader, std::string_view(frame).substr(length));
        const auto whole = reader.Next();
        ASSERT_TRUE(whole.has_value()) << length;
        EXPECT_EQ(whole->whole, frame);
        EXPECT_EQ(DecodeMessage(whole->body).data, "payload");
    }
}

TEST(FrameReader, TheLargestMessageFitsBetweenSmallOnes) {
    const std::string large = MessageFrame(std::string(kMaxDataBytes, 'x'));
    FrameReader reader;
    Feed(reader, MessageFrame("before") + large + MessageFrame("after"));
    EXPECT_EQ(reader.Next()->whole, MessageFrame("before"));
    EXPECT_EQ(reader.Next()->whole, large);
    EXPECT_EQ(reader.Next()->whole, MessageFrame("after"));
    EXPECT_FALSE(reader.Next().has_value());
}

TEST(FrameReader, AnOversizedFrameIsRefusedBeforeItsBodyComes) {
    FrameReader reader;
    Feed(reader, std::string("\xFF\xFF\xFF\x7F\x01", 5));
    EXPECT_THROW(reader.Next(), ProtocolError);
}

TEST(FrameReader, AnAnnouncedLengthTakesNoMemoryBeforeTheBytesCome) {
    FrameReader reader;
    Feed(reader, MessageFrame(std::string(kMaxDataBytes, 'x')).substr(0, 100));
    EXPECT_FALSE(reader.Next().has_value());
    EXPECT_LT(reader.Space().size(), 1024u * 1024u);
}

TEST(FrameReader, RandomBytesAreFramesOrRefusedButNeverMore) {
    std::mt19937 random(20240607);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(random() % 400, '\0');
        for (char& byte : bytes) byte = static_cast<char>(random() % 3 == 0 ? random() : 0);
        FrameReader reader;
        Feed(reader, bytes);
        std::size_t taken = 0;
        try {
            while (const auto frame = reader.Next()) {
                taken += frame->whole.size();
                if (frame->type == FrameType::kMessage) DecodeMessage(frame->body);
                if (frame->type != FrameType::kMessage) DecodeRoutes(frame->body);
            }
        } catch (const ProtocolError&) {
        }
        EXPECT_LE(taken, bytes.size());
    }
}

}  // namespace
}  // namespace ipc_client
