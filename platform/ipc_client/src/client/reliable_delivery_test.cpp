// What reaches its receiver although connections break and brokers die, and who is told what.

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/file.h"
#include "base/text.h"
#include "ipc/hexadecimal.h"
#include "ipc/message_frame.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "ipc_client/ipc_message_client.h"
#include "test_process.h"

namespace ipc_test {
namespace {

using namespace std::string_literals;
using ipc_client::FrameType;
using ipc_client::Introduction;
using ::testing::ElementsAre;

constexpr int kService = 0xB20001, kPage = 0x270000, kStart = 1, kProgress = 2;

IpcLife LifeOf(char name) {
    IpcLife life;
    life.bytes.fill(static_cast<std::uint8_t>(name));
    return life;
}

std::string IntroductionFrame(const Introduction& introduction) {
    std::string frame;
    ipc_client::AppendIntroduction(frame, introduction);
    return frame;
}

std::string NumbersFrame(FrameType type, std::vector<ipc_client::NumberRange> numbers) {
    std::string frame;
    ipc_client::AppendNumbers(frame, type, numbers);
    return frame;
}

// A peer that has introduced itself, and reads frames.
class NamedPeer {
public:
    NamedPeer(const std::filesystem::path& path, const Introduction& introduction) : m_peer(path) {
        m_peer.Write(Hello() + IntroductionFrame(introduction));
        EXPECT_EQ(m_peer.Read(Hello().size()), Hello());
        const auto [type, body] = Read();
        EXPECT_EQ(type, FrameType::kIntroduction);
        broker = ipc_client::DecodeIntroduction(body);
    }

    struct Frame {
        FrameType type;
        std::string body;
    };
    Frame Read() {
        const std::string head = m_peer.Read(ipc_client::kFrameHeadBytes);
        if (head.size() < ipc_client::kFrameHeadBytes) return {FrameType::kFarewell, ""};
        const ipc_client::FrameHead decoded = ipc_client::DecodeHead(head);
        return {decoded.type, m_peer.Read(decoded.bodyBytes)};
    }

    // The next frame that is no news of what waits.
    std::vector<ipc_client::NumberRange> ReadDone() {
        Frame frame = Read();
        while (frame.type == FrameType::kWaiting) frame = Read();
        EXPECT_EQ(frame.type, FrameType::kAcknowledge);
        return ipc_client::DecodeNumbers(frame.body);
    }

    std::string ReadDelivery() {
        const Frame frame = Read();
        EXPECT_EQ(frame.type, FrameType::kDelivery);
        if (frame.type != FrameType::kDelivery) return "";
        return std::string(ipc_client::DecodeMessage(ipc_client::DecodeDelivery(frame.body).messageBody).data);
    }

    bool Write(std::string_view bytes) { return m_peer.Write(bytes); }

    Introduction broker;

private:
    RawPeer m_peer;
};

class ReliableDelivery : public PipeTest {
protected:
    // A connection of the life 'P'.
    static Introduction Page(std::uint32_t connection, std::uint64_t first = 0, std::uint64_t received = 0) {
        return {connection, LifeOf('P'), {}, first, received};
    }
    static std::string Start(std::string data) { return MessageFrame(std::move(data), {kService, kStart}); }
    static std::string Progress(std::string data) { return MessageFrame(std::move(data), {kPage, kProgress}); }
};

TEST_F(ReliableDelivery, WhatADyingBrokerHadTakenIsSentToTheNext) {
    IPCMessageClient page(kPage, true, false, kPipe);
    {
        test_process::Process broker(BROKER_PROGRAM, {base::Utf8FromWide(kPipe)});
        ASSERT_TRUE(broker.Output().WaitFor("serving"));
        ASSERT_TRUE(WaitUntil([] { return IsPipeConnected(kPipe); }));
        for (const char* data : {"one", "two", "three"}) ASSERT_TRUE(Post(page, kService, kStart, data));
        RawPeer sign(SocketPath());  // is answered once the broker has read what came before
        sign.Write(Hello());
        sign.Read(Hello().size());
        broker.Kill();
        broker.WaitForEnd();
    }
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox inbox;
    IPCMessageClient service(kService, true, false, kPipe);
    service.RegisterMessageCallback(kStart, inbox.Callback());
    EXPECT_THAT(inbox.WaitForData(3), ElementsAre("one", "two", "three"));
}

TEST_F(ReliableDelivery, AMessageIsDoneWhenItsCallbackHasReturned) {
    IPCBroker broker(kPipe);
    broker.Start();
    std::atomic<bool> mayReturn{false};
    IPCMessageClient service(kService, true, false, kPipe);
    NamedPeer page(SocketPath(), Page(1));
    page.Write(Start("start"));
    EXPECT_EQ(page.Read().type, FrameType::kWaiting);
    service.RegisterMessageCallback(
        kStart, [&](TagIPCMessageItem&) { EXPECT_TRUE(WaitUntil([&] { return mayReturn.load(); })); });
    std::string question;
    ipc_client::AppendQuestion(question);
    page.Write(question);
    EXPECT_EQ(page.Read().type, FrameType::kAnswer);
    mayReturn = true;
    EXPECT_THAT(page.ReadDone(), ElementsAre(ipc_client::NumberRange{0, 1}));
}

TEST_F(ReliableDelivery, AConnectionGoesOnWhereTheLastOneBroke) {
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox inbox;
    IPCMessageClient service(kService, true, false, kPipe);
    service.RegisterMessageCallback(kStart, inbox.Callback());
    {
        NamedPeer page(SocketPath(), Page(1));
        EXPECT_EQ(page.broker.received, 0u);
        page.Write(AnnouncementFrame({{kPage, kProgress}}) + Start("0") + Start("1") + Start("2").substr(0, 20));
        EXPECT_THAT(inbox.WaitForData(2), ElementsAre("0", "1"));
        while (page.ReadDone().back().behind < 2) {
        }
    }
    for (const char* data : {"a", "b", "c"}) Post(service, kPage, kProgress, data);
    NamedPeer page(SocketPath(), Page(2));
    EXPECT_EQ(page.broker.known, LifeOf('P'));
    EXPECT_EQ(page.broker.received, 2u) << "the one that was cut has not come";
    EXPECT_THAT(page.ReadDone(), ElementsAre(ipc_client::NumberRange{0, 2})) << "as if the first time was not heard";
    page.Write(AnnouncementFrame({{kPage, kProgress}}) + Start("2"));
    EXPECT_THAT(inbox.WaitForData(3), ElementsAre("0", "1", "2"));
    for (const char* data : {"a", "b", "c"}) EXPECT_EQ(page.ReadDelivery(), data);
    NamedPeer again(SocketPath(), Page(3, 3, 1));
    for (const char* data : {"b", "c"}) EXPECT_EQ(again.ReadDelivery(), data) << "one had been received";
    again.Write(NumbersFrame(FrameType::kAcknowledge, {{0, 3}}));
}

TEST_F(ReliableDelivery, WhatWaitsForSomebodyIsToldAnewOnEachConnection) {
    IPCBroker broker(kPipe);
    broker.Start();
    for (const std::uint32_t connection : {1, 2, 3}) {
        NamedPeer page(SocketPath(), Page(connection));
        if (connection == 1) page.Write(Start("0") + Start("1"));
        std::uint64_t told = 0;
        while (told < 2) {
            const NamedPeer::Frame frame = page.Read();
            ASSERT_EQ(frame.type, FrameType::kWaiting) << "on connection " << connection;
            told = ipc_client::DecodeNumbers(frame.body).back().behind;
        }
    }
}

TEST_F(ReliableDelivery, AnEarlierIntroductionThatComesLateLeavesTheConnectionAlone) {
    IPCBroker broker(kPipe);
    broker.Start();
    IPCMessageClient service(kService, true, false, kPipe);
    NamedPeer page(SocketPath(), Page(2));
    page.Write(AnnouncementFrame({{kPage, kProgress}}));
    RawPeer late(SocketPath());
    late.Write(Hello() + IntroductionFrame(Page(1)));
    EXPECT_TRUE(late.IsClosedByPeer());
    Post(service, kPage, kProgress, "heard");
    EXPECT_EQ(page.ReadDelivery(), "heard");
}

TEST_F(ReliableDelivery, AReplacedConnectionIsToldSo) {
    IPCBroker broker(kPipe);
    broker.Start();
    NamedPeer first(SocketPath(), Page(1)), second(SocketPath(), Page(2));
    const auto refusal = first.Read();
    EXPECT_EQ(refusal.type, FrameType::kRefusal);
    EXPECT_EQ(ipc_client::DecodeRefusal(refusal.body).code, 5u);
}

TEST_F(ReliableDelivery, AnOldPeerGetsAReasonThatItCanRead) {
    IPCBroker broker(kPipe);
    broker.Start();
    RawPeer old(SocketPath());
    std::string hello;
    ipc_client::AppendHello(hello, 1);
    old.Write(hello);
    std::string expected = Hello();
    ipc_client::AppendRefusal(expected, ipc_client::RefusalCode::kVersion,
                              "the other side speaks protocol version 1, this one 2");
    EXPECT_EQ(old.Read(expected.size()), expected);
    EXPECT_TRUE(old.IsClosedByPeer());
}

TEST_F(ReliableDelivery, RoutesAnnouncedAfterACutReplaceThoseBefore) {
    IPCBroker broker(kPipe);
    broker.Start();
    IPCMessageClient service(kService, true, false, kPipe);
    { NamedPeer(SocketPath(), Page(1)).Write(AnnouncementFrame({{kPage, kProgress}})); }
    NamedPeer page(SocketPath(), Page(2));
    page.Write(AnnouncementFrame({}));
    std::string question;
    ipc_client::AppendQuestion(question);
    page.Write(question);
    EXPECT_EQ(page.Read().type, FrameType::kAnswer);
    Post(service, kPage, kProgress, "waits");
    page.Write(AnnouncementFrame({{kPage, kProgress}}));
    EXPECT_EQ(page.ReadDelivery(), "waits");
}

TEST_F(ReliableDelivery, AnAddressedMessageIsForThoseWhoAreThere) {
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox inbox;
    std::vector<IpcLife> senders;
    IPCMessageClient service(kService, true, false, kPipe);
    service.RegisterMessageCallback(kStart, [&, callback = inbox.Callback()](TagIPCMessageItem& item) {
        senders.push_back(CurrentIpcSender().life);
        callback(item);
    });
    NamedPeer one(SocketPath(), Page(1)), other(SocketPath(), {1, LifeOf('Q'), {}, 0, 0});
    for (NamedPeer* page : {&one, &other}) {
        page->Write(AnnouncementFrame({{kPage, kProgress}}) + Start("ready"));
        page->ReadDone();
    }
    inbox.WaitFor(2);
    EXPECT_THAT(senders, ElementsAre(LifeOf('P'), LifeOf('Q')));
    TagIPCMessageItem item;
    item.destId = kPage;
    item.msgId = kProgress;
    std::string data = "for Q";
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    const IpcLife absent = LifeOf('X'), toOther[] = {LifeOf('Q'), absent};
    EXPECT_TRUE(service.PostTo({&absent, 1}, item));
    EXPECT_TRUE(service.PostTo(toOther, item));
    EXPECT_TRUE(service.PostTo({}, item));
    EXPECT_EQ(other.ReadDelivery(), "for Q");
    EXPECT_EQ(other.ReadDelivery(), "for Q");
    EXPECT_EQ(one.ReadDelivery(), "for Q") << "the one that was for everybody";
}

TEST_F(ReliableDelivery, AnEventIsTakenOnce) {
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox inbox;
    IPCMessageClient service(kService, true, false, kPipe), page(kPage, true, false, kPipe);
    page.RegisterMessageCallback(kProgress, inbox.Callback());
    Post(service, kPage, kProgress, "listens");
    inbox.WaitFor(1);
    TagIPCMessageItem item;
    item.destId = kPage;
    item.msgId = kProgress;
    const std::uint64_t events[] = {7, 7, 0, 0, 8, 7};
    std::string data = "x";
    item.dataLen = 1;
    for (const std::uint64_t event : events) {
        data[0] = static_cast<char>('0' + event);
        item.data = data.data();
        EXPECT_TRUE(service.PostTo({}, item, event));
    }
    Post(service, kPage, kProgress, "last");
    EXPECT_THAT(inbox.WaitForData(6), ElementsAre("listens", "7", "0", "0", "8", "last"));
}

TEST_F(ReliableDelivery, TheServiceHearsWhoComesAndGoes) {
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox arrived, left;
    IPCMessageClient service(kService, true, false, kPipe);
    service.RegisterMessageCallback(kIpcPeerArrived, arrived.Callback());
    service.RegisterMessageCallback(kIpcPeerLeft, left.Callback());
    test_process::Process page(FOREIGN_PEER_PROGRAM, {base::Utf8FromPath(SocketPath())});
    const std::string frames =
        Hello() + IntroductionFrame({1, LifeOf('P'), LifeOf('B'), 0, 0}) + AnnouncementFrame({{kPage, kProgress}});
    page.Write("write 1 " + Hexadecimal(frames) + "\n");
    EXPECT_THAT(arrived.WaitForData(1), ElementsAre("\1"s)) << "it has known another broker";
    page.Kill();
    left.WaitFor(1);
    EXPECT_EQ(left.Count(), 1u) << "its process has gone";
}

TEST_F(ReliableDelivery, ANewConnectionDoesNotOvertakeTheOneThatStillWrites) {
    IPCBroker broker(kPipe);
    broker.Start();
    RawPeer service(SocketPath());
    service.Write(Hello() + AnnouncementFrame({{kService, kStart}}));
    const std::string large(1024 * 1024, 'x');
    auto first = std::make_unique<IPCMessageClient>(kPage, false, false, kPipe);
    ASSERT_TRUE(WaitUntil([] { return IsPipeConnected(kPipe); }));
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(Post(*first, kService, kStart, large));
    std::jthread end([&] { first.reset(); });
    ASSERT_TRUE(WaitUntil([] { return !IsPipeConnected(kPipe); }));
    IPCMessageClient second(kPage, false, false, kPipe);
    ASSERT_TRUE(Post(second, kService, kStart, "after"));
    service.Read(Hello().size());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(service.Read(MessageFrame(large).size()).size(), MessageFrame(large).size());
    }
    const std::string after = MessageFrame("after", {kService, kStart});
    EXPECT_EQ(service.Read(after.size()).substr(after.size() - 5), "after");
}

TEST_F(ReliableDelivery, WhatAReaderThatWasGivenUpHasSentIsNotTakenTwice) {
    IPCBrokerLimits limits;
    limits.outgoingBytes = 1024 * 1024;
    IPCBroker broker(kPipe, limits);
    broker.Start();
    Inbox inbox;
    IPCMessageClient service(kService, true, false, kPipe);
    service.RegisterMessageCallback(kStart, inbox.Callback());
    test_process::Process page(FOREIGN_PEER_PROGRAM, {base::Utf8FromPath(SocketPath())});
    const std::string begin = Hello() + IntroductionFrame(Page(1)) + AnnouncementFrame({{kPage, kProgress}});
    page.Write("write 1 " + Hexadecimal(begin + Start("once")) + "\n");
    EXPECT_THAT(inbox.WaitForData(1), ElementsAre("once"));
    ASSERT_TRUE(Post(service, kPage, kProgress, std::string(limits.outgoingBytes, 'x')));
    EXPECT_TRUE(Logged("it reads too slowly"));
    EXPECT_TRUE(Logged("1 messages for it are lost"));
    page.Write("end\n");
    EXPECT_TRUE(page.Output().WaitFor("closed"));
    page.Write(
        "again\nwrite 1 " +
        Hexadecimal(Hello() + IntroductionFrame(Page(2)) + AnnouncementFrame({{kPage, kProgress}}) + Start("next")) +
        "\n");
    EXPECT_THAT(inbox.WaitForData(2), ElementsAre("once", "next")) << "as the broker still counts from one";
}

}  // namespace
}  // namespace ipc_test
