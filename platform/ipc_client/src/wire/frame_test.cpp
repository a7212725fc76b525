#include "wire/frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>

#include "ipc/message_frame.h"

namespace ipc_client {
namespace {

using ipc_test::MessageFrame;
using std::literals::operator""sv;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) bytes.push_back(static_cast<char>(value));
    return bytes;
}

TagIPCMessageItem Item(std::string& data) {
    TagIPCMessageItem item;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    return item;
}

std::string Body(const std::string& frame) { return frame.substr(kFrameHeadBytes); }

TEST(Frame, HelloIsMagicAndVersion) {
    std::string bytes;
    AppendHello(bytes);
    EXPECT_EQ(bytes, Bytes({0x42, 0x50, 0x49, 0x50, 0x02, 0x00, 0x00, 0x00}));
    EXPECT_NO_THROW(CheckHello(bytes));
}

TEST(Frame, AStartRequestIsTheseBytes) {
    std::string data("AB\0"sv);
    TagIPCMessageItem item = Item(data);
    item.destId = 0xB20001;
    item.sourceId = 0x270000;
    item.msgId = 0xB20022;
    std::string frame;
    AppendMessage(frame, item);
    EXPECT_EQ(frame, Bytes({0x28, 0x00, 0x00, 0x00, 0x01,                          // 40 bytes, message
                            0x01, 0x00, 0xB2, 0x00, 0x00, 0x00, 0x27, 0x00,        // destination, source
                            0x22, 0x00, 0xB2, 0x00,                                // message id
                            0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF,        // header words 1, 2
                            0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // header words 3, 4, flag
                            0x00, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00,        // lengths of text and payload
                            0x41, 0x42, 0x00}));                                   // payload
}

TEST(Frame, AMessageWithoutPayloadEndsWithItsLengths) {
    TagIPCMessageItem item;
    item.destId = 0xB20001;
    item.sourceId = 0x270000;
    item.msgId = 0xB20027;
    std::string frame;
    AppendMessage(frame, item);
    EXPECT_EQ(frame, Bytes({0x25, 0x00, 0x00, 0x00, 0x01, 0x01, 0x00, 0xB2, 0x00, 0x00, 0x00, 0x27, 0x00, 0x27,
                            0x00, 0xB2, 0x00, 0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00,
                            0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}));
}

TEST(Frame, EveryHeaderFieldHasItsOwnPlace) {
    std::string data = "D";
    TagIPCMessageItem item = Item(data);
    item.text = "T";
    item.destId = 0x04030201;
    item.sourceId = 0x14131211;
    item.msgId = 0x24232221;
    item.headerWord1 = 0x34333231;
    item.headerWord2 = 0x44434241;
    item.headerWord3 = 0x54535251;
    item.headerWord4 = 0x64636261;
    item.flag = 0xF1;
    std::string frame;
    AppendMessage(frame, item);
    EXPECT_EQ(frame, Bytes({0x27, 0x00, 0x00, 0x00, 0x01, 0x01, 0x02, 0x03, 0x04, 0x11, 0x12, 0x13, 0x14, 0x21, 0x22,
                            0x23, 0x24, 0x31, 0x32, 0x33, 0x34, 0x41, 0x42, 0x43, 0x44, 0x51, 0x52, 0x53, 0x54, 0x61,
                            0x62, 0x63, 0x64, 0xF1, 0x01, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 'T',  'D'}));
}

TEST(Frame, AnAnnouncementIsTheseBytes) {
    std::string frame;
    const Route routes[] = {{0x270000, 0xB20027}, {0x270000, 0xB20023}};
    AppendRoutes(frame, FrameType::kAnnounce, routes);
    EXPECT_EQ(frame, Bytes({0x10, 0x00, 0x00, 0x00, 0x02,                    // 16 bytes, announcement
                            0x00, 0x00, 0x27, 0x00, 0x27, 0x00, 0xB2, 0x00,  // endpoint, message id
                            0x00, 0x00, 0x27, 0x00, 0x23, 0x00, 0xB2, 0x00}));
    EXPECT_THAT(DecodeRoutes(Body(frame)), ElementsAre(routes[0], routes[1]));
}

TEST(Frame, AWithdrawalIsTheseBytes) {
    std::string frame;
    const Route routes[] = {{0x270000, 0xB20024}};
    AppendRoutes(frame, FrameType::kWithdraw, routes);
    EXPECT_EQ(frame, Bytes({0x08, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x27, 0x00, 0x24, 0x00, 0xB2, 0x00}));
}

TEST(Frame, AMessageComesBackAsItWas) {
    std::string data("\0binary\xFF"sv);
    TagIPCMessageItem item = Item(data);
    item.text = "caption";
    item.destId = INT_MIN;
    item.sourceId = INT_MAX;
    item.msgId = -1;
    item.headerWord4 = 7;
    item.flag = 200;
    std::string frame;
    AppendMessage(frame, item);
    const std::string body = Body(frame);
    const MessageView view = DecodeMessage(body);
    EXPECT_EQ(view.destId, INT_MIN);
    EXPECT_EQ(view.sourceId, INT_MAX);
    EXPECT_EQ(view.msgId, -1);
    EXPECT_EQ(view.headerWord1, 0);
    EXPECT_EQ(view.headerWord2, -1);
    EXPECT_EQ(view.headerWord3, 0);
    EXPECT_EQ(view.headerWord4, 7);
    EXPECT_EQ(view.flag, 200);
    EXPECT_EQ(view.text, "caption");
    EXPECT_EQ(view.data, data);
}

TEST(Frame, AMessageCutAtAnyLengthIsRefused) {
    std::string data = "payload";
    TagIPCMessageItem item = Item(data);
    item.text = "text";
    std::string frame;
    AppendMessage(frame, item);
    const std::string body = Body(frame);
    for (std::size_t length = 0; length < body.size(); ++length) {
        EXPECT_THROW(DecodeMessage(body.substr(0, length)), ProtocolError) << length;
    }
    EXPECT_THROW(DecodeMessage(body + "x"), ProtocolError);
}

TEST(Frame, AListOfRoutesCutAtAnyLengthIsRefusedUnlessWholeRoutesAreLeft) {
    std::string frame;
    const Route routes[] = {{1, 2}, {3, 4}, {5, 6}};
    AppendRoutes(frame, FrameType::kWithdraw, routes);
    const std::string body = Body(frame);
    for (std::size_t length = 0; length < body.size(); ++length) {
        if (length % kRouteBytes == 0) {
            EXPECT_EQ(DecodeRoutes(body.substr(0, length)).size(), length / kRouteBytes);
        } else {
            EXPECT_THROW(DecodeRoutes(body.substr(0, length)), ProtocolError) << length;
        }
    }
}

TEST(Frame, AnnouncedLengthsThatWouldWrapAreRefused) {
    std::string frame;
    AppendMessage(frame, TagIPCMessageItem{});
    std::string body = Body(frame);
    for (std::size_t i = body.size() - 8; i < body.size(); ++i) body[i] = '\xFF';
    EXPECT_THAT([&] { DecodeMessage(body); }, ThrowsMessage<ProtocolError>(HasSubstr("over the limit")));
}

TEST(Frame, AHeadIsRefusedForWhatIsWrongWithIt) {
    const struct {
        std::string head;
        const char* reason;
    } cases[] = {
        {Bytes({0x01, 0x00, 0x00, 0x00, 0x00}), "unknown frame type 0"},
        {Bytes({0x01, 0x00, 0x00, 0x00, 0x0E}), "unknown frame type 14"},
        {Bytes({0x01, 0x00, 0x00, 0x00, 0xFF}), "unknown frame type 255"},
        {Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0x01}), "a frame of 4294967295 bytes is over the limit"},
        {Bytes({0x26, 0x00, 0x01, 0x01, 0x01}), "a frame of 16842790 bytes is over the limit of 16842789"},
    };
    for (const auto& wrong : cases) {
        EXPECT_THAT([&] { DecodeHead(wrong.head); }, ThrowsMessage<ProtocolError>(HasSubstr(wrong.reason)));
    }
    EXPECT_EQ(DecodeHead(Bytes({0x25, 0x00, 0x01, 0x01, 0x01})).bodyBytes, kMaxMessageBytes);
}

TEST(Frame, AHandshakeIsRefusedForWhatIsWrongWithIt) {
    EXPECT_THAT([] { CheckHello("GET / HT"); }, ThrowsMessage<ProtocolError>(HasSubstr("magic")));
    std::string later;
    AppendHello(later, 3);
    EXPECT_THAT([&] { CheckHello(later); },
                ThrowsMessage<ProtocolError>(HasSubstr("speaks protocol version 3, this one 2")));
}

TEST(Frame, AnItemThatCannotBeAMessageIsNotPostable) {
    std::string data = "x";
    TagIPCMessageItem item = Item(data);
    EXPECT_TRUE(IsPostable(item));
    item.data = nullptr;
    EXPECT_FALSE(IsPostable(item));
    item.dataLen = 0;
    EXPECT_TRUE(IsPostable(item));
    item.dataLen = -1;
    EXPECT_FALSE(IsPostable(item));
    item = Item(data);
    item.dataLen = kMaxDataBytes + 1;
    EXPECT_FALSE(IsPostable(item));
    item = Item(data);
    item.text.assign(kMaxTextBytes, 't');
    EXPECT_TRUE(IsPostable(item));
    item.text.push_back('t');
    EXPECT_FALSE(IsPostable(item));
}

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
