// The broker: its name, its queues, its connections.

#include "ipc_client/ipc_broker.h"

#include <gmock/gmock.h>

#include "ipc/pipe_test.h"
#include "ipc_client/ipc_message_client.h"
#include "wire/frame.h"

namespace ipc_test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

constexpr int kPage = 0x270000, kList = 1, kProgress = 2;

class IpcBrokerTest : public PipeTest {};

TEST_F(IpcBrokerTest, ASecondBrokerOfANameIsRefusedWithPathAndReason) {
    IPCBroker first(kPipe), second(kPipe);
    first.Start();
    EXPECT_THAT([&] { second.Start(); },
                ThrowsMessage<std::runtime_error>(AllOf(HasSubstr(SocketPath().string()), HasSubstr("taken"))));
    Inbox inbox;
    IPCMessageClient client(kPage, true, false, kPipe);
    client.RegisterMessageCallback(kList, inbox.Callback());
    Post(client, kPage, kList, "the first goes on");
    EXPECT_THAT(inbox.WaitForData(1), ElementsAre("the first goes on"));
    first.Stop();
    EXPECT_NO_THROW(second.Start());
}

TEST_F(IpcBrokerTest, BrokersOfOtherNamesDoNotMind) {
    IPCBroker first(kPipe), second(L"\\\\.\\Pipe\\Other");
    first.Start();
    EXPECT_NO_THROW(second.Start());
}

TEST_F(IpcBrokerTest, AConnectionGetsOneCopyHoweverOftenItAnnounces) {
    IPCBroker broker(kPipe);
    broker.Start();
    std::string announcement = Hello();
    const ipc_client::Route routes[] = {{kPage, kList}, {kPage, kList}};
    ipc_client::AppendRoutes(announcement, ipc_client::FrameType::kAnnounce, routes);
    ipc_client::AppendRoutes(announcement, ipc_client::FrameType::kAnnounce, routes);
    TagIPCMessageItem item;
    item.destId = kPage;
    item.msgId = kList;
    std::string frame, last;
    ipc_client::AppendMessage(frame, item);
    item.flag = 1;
    ipc_client::AppendMessage(last, item);
    RawPeer peer(SocketPath());
    ASSERT_TRUE(peer.Write(announcement + frame + last));
    EXPECT_EQ(peer.Read(8), Hello());
    EXPECT_EQ(peer.Read(frame.size()), frame);
    EXPECT_EQ(peer.Read(last.size()), last);
}

TEST_F(IpcBrokerTest, EveryConnectionThatAnnouncedGetsACopy) {
    IPCBroker broker(kPipe);
    broker.Start();
    std::string announcement = Hello(), frame;
    const ipc_client::Route routes[] = {{kPage, kList}};
    ipc_client::AppendRoutes(announcement, ipc_client::FrameType::kAnnounce, routes);
    TagIPCMessageItem item;
    item.destId = kPage;
    item.msgId = kList;
    ipc_client::AppendMessage(frame, item);
    RawPeer first(SocketPath()), second(SocketPath());
    ASSERT_TRUE(first.Write(announcement + frame));  // its own copy shows that the announcement has been taken
    EXPECT_EQ(first.Read(8 + frame.size()), Hello() + frame);
    ASSERT_TRUE(second.Write(announcement + frame));
    EXPECT_EQ(second.Read(8 + frame.size()), Hello() + frame);
    EXPECT_EQ(first.Read(frame.size()), frame);
}

TEST_F(IpcBrokerTest, WhatNobodyTakesWaitsInBoundedQueuesAndComesInOrder) {
    IPCBrokerLimits limits;
    limits.pendingMessagesPerSender = 3;
    IPCBroker broker(kPipe, limits);
    broker.Start();
    Inbox inbox, echo;
    IPCMessageClient client(kPage, true, false, kPipe);
    for (const char* data : {"1", "2", "3", "4", "5"}) Post(client, kPage, kProgress, data);
    EXPECT_TRUE(Logged(
        "nobody takes message 0x2 to endpoint 0x270000, its sender's queue is full: the oldest dropped (1 so far)"));
    client.RegisterMessageCallback(kProgress, inbox.Callback());
    EXPECT_THAT(inbox.WaitForData(3), ElementsAre("3", "4", "5"));
}

TEST_F(IpcBrokerTest, MessagesWaitAgainAfterTheLastCallbackIsGone) {
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox first, second;
    IPCMessageClient client(kPage, true, false, kPipe);
    client.RegisterMessageCallback(kList, first.Callback());
    Post(client, kPage, kList, "to the first");
    EXPECT_THAT(first.WaitForData(1), ElementsAre("to the first"));
    client.UnRegisterMessageCallback(kList);
    Post(client, kPage, kList, "waits");
    client.RegisterMessageCallback(kList, second.Callback());
    EXPECT_THAT(second.WaitForData(1), ElementsAre("waits"));
}

TEST_F(IpcBrokerTest, MessagesForAConnectionThatEndedWaitForTheNext) {
    IPCBroker broker(kPipe);
    broker.Start();
    IPCMessageClient sender(1, true, false, kPipe);
    {
        std::string announcement = Hello();
        const ipc_client::Route routes[] = {{kPage, kList}};
        ipc_client::AppendRoutes(announcement, ipc_client::FrameType::kAnnounce, routes);
        RawPeer peer(SocketPath());
        ASSERT_TRUE(peer.Write(announcement));
        EXPECT_EQ(peer.Read(8), Hello());
    }
    ASSERT_TRUE(Logged("closed: the other side closed it"));
    Post(sender, kPage, kList, "for the next");
    Inbox inbox;
    IPCMessageClient page(kPage, true, false, kPipe);
    page.RegisterMessageCallback(kList, inbox.Callback());
    EXPECT_THAT(inbox.WaitForData(1), ElementsAre("for the next"));
}

TEST_F(IpcBrokerTest, APeerWhoseLastWordsWereMessagesIsHeardToTheEnd) {
    IPCBroker broker(kPipe);
    broker.Start();
    std::string announcement = Hello(), frame;
    const ipc_client::Route routes[] = {{1, kList}};
    ipc_client::AppendRoutes(announcement, ipc_client::FrameType::kAnnounce, routes);
    std::string data(100000, 'd');
    TagIPCMessageItem item;
    item.destId = 1;
    item.msgId = kList;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    ipc_client::AppendMessage(frame, item);
    {
        RawPeer peer(SocketPath());  // reads nothing, so the broker's writes to it fail once it has gone
        ASSERT_TRUE(peer.Write(announcement + frame + frame));
        item.destId = kPage;
        frame.clear();
        ipc_client::AppendMessage(frame, item);
        ASSERT_TRUE(peer.Write(frame));
    }
    Inbox inbox;
    IPCMessageClient page(kPage, true, false, kPipe);
    page.RegisterMessageCallback(kList, inbox.Callback());
    EXPECT_EQ(inbox.WaitFor(1).size(), 1u);
}

}  // namespace
}  // namespace ipc_test
