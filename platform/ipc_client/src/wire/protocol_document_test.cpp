// The frames, against the document that strangers write peers by.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "wire/frame.h"

namespace ipc_client {
namespace {

using std::literals::operator""sv;
using testing::Contains;

// The bytes of each block of docs/protocol.md: those that its lines begin with.
std::vector<std::string> DocumentedBytes() {
    std::ifstream document(IPC_PROTOCOL_DOCUMENT);
    EXPECT_TRUE(document.is_open());
    static const std::regex bytes("^((?:[0-9A-F]{2} )*[0-9A-F]{2})(?: .*)?$");
    std::vector<std::string> blocks;
    bool isBlock = false;
    for (std::string line; std::getline(document, line);) {
        if (line.starts_with("```")) {
            isBlock = !isBlock;
            if (isBlock) blocks.emplace_back();
        }
        std::smatch match;
        if (!isBlock || !std::regex_match(line, match, bytes)) continue;
        std::istringstream numbers(match[1]);
        for (int byte = 0; numbers >> std::hex >> byte;) blocks.back().push_back(static_cast<char>(byte));
    }
    return blocks;
}

// The 16 bytes from that one on.
IpcLife LifeFrom(int first) {
    IpcLife life;
    for (std::uint8_t& byte : life.bytes) byte = static_cast<std::uint8_t>(first++);
    return life;
}

const IpcLife kPage = LifeFrom(0xA0), kBroker = LifeFrom(0xB0), kService = LifeFrom(0xC0);

TagIPCMessageItem Message(int dest, int source, int id, std::string_view data) {
    TagIPCMessageItem item;
    item.destId = dest;
    item.sourceId = source;
    item.msgId = id;
    item.data = const_cast<char*>(data.data());
    item.dataLen = static_cast<std::int32_t>(data.size());
    return item;
}

template <typename... Arguments>
std::string Frame(void (*append)(std::string&, Arguments...), std::type_identity_t<Arguments>... arguments) {
    std::string frame;
    append(frame, arguments...);
    return frame;
}

std::string MessageFrame(const TagIPCMessageItem& item) {
    std::string frame;
    AppendMessage(frame, item);
    return frame;
}

std::string BodyOf(const TagIPCMessageItem& item) { return MessageFrame(item).substr(kFrameHeadBytes); }

TEST(ProtocolDocument, ShowsWhatIsWrittenFirst) {
    EXPECT_THAT(DocumentedBytes(), Contains(Frame(AppendHello, kProtocolVersion)));
}

TEST(ProtocolDocument, ShowsMessagesAndRoutes) {
    const auto documented = DocumentedBytes();
    EXPECT_THAT(documented, Contains(MessageFrame(Message(0xB20001, 0x270000, 0xB20022, "AB\0"sv))));
    const Route wanted[] = {{0x270000, 0xB20027}, {0x270000, 0xB20023}}, unwanted[] = {{0x270000, 0xB20024}};
    EXPECT_THAT(documented, Contains(Frame(AppendRoutes, FrameType::kAnnounce, wanted)));
    EXPECT_THAT(documented, Contains(Frame(AppendRoutes, FrameType::kWithdraw, unwanted)));
}

TEST(ProtocolDocument, ShowsIntroductions) {
    Introduction page{3, kPage, kBroker, 7, 12};
    Introduction broker{0, kBroker, kPage, 11, 9};
    EXPECT_THAT(DocumentedBytes(), Contains(Frame(AppendIntroduction, page)));
    EXPECT_THAT(DocumentedBytes(), Contains(Frame(AppendIntroduction, broker)));
}

TEST(ProtocolDocument, ShowsADeliveryAndAnAddressedMessage) {
    const auto documented = DocumentedBytes();
    Stamp stamp;
    stamp.sender = {kService, 4660, 1000};
    stamp.number = 5;
    stamp.event = 0x123456789ABCDEF0;
    const std::string body = BodyOf(Message(0x270000, 0xB20001, 0xB20024, "AB\0"sv));
    EXPECT_THAT(documented, Contains(Frame(AppendDelivery, stamp, body)));
    const IpcLife lives[] = {kPage};
    const TagIPCMessageItem list = Message(0x270000, 0xB20001, 0xB20027, "\1\0\0\0\0\0\0\0"sv);
    EXPECT_THAT(documented, Contains(Frame(AppendAddressed, lives, 0, list)));
}

TEST(ProtocolDocument, ShowsWhatIsSaidOfNumbers) {
    const auto documented = DocumentedBytes();
    const NumberRange ranges[] = {{5, 8}};
    EXPECT_THAT(documented, Contains(Frame(AppendNumbers, FrameType::kAcknowledge, ranges)));
    EXPECT_THAT(documented, Contains(Frame(AppendSkip, 2)));
}

TEST(ProtocolDocument, ShowsQuestionAnswerAndEnds) {
    const auto documented = DocumentedBytes();
    EXPECT_THAT(documented, Contains(Frame(AppendQuestion)));
    EXPECT_THAT(documented, Contains(Frame(AppendAnswer, true)));
    EXPECT_THAT(documented, Contains(Frame(AppendFarewell)));
}

// With the reason that a client of version 1 is given.
TEST(ProtocolDocument, ShowsARefusalBehindTheFirstBytes) {
    std::string version1, refused;
    AppendHello(version1, 1);
    AppendHello(refused);
    try {
        CheckHello(version1);
        FAIL() << "another version is taken";
    } catch (const ProtocolError& error) {
        AppendRefusal(refused, error.Code(), error.what());
    }
    EXPECT_THAT(DocumentedBytes(), Contains(refused));
}

}  // namespace
}  // namespace ipc_client
