// Messages from post to callback: what arrives, in which order, and in which order the parts may be started.

#include "ipc_client/ipc_message_client.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>

#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "kernel/ui_turn.h"
#include "wire/frame.h"

namespace ipc_test {
namespace {

using std::literals::operator""s;
using ::testing::ElementsAre;

constexpr int kService = 0xB20001, kPage = 0x270000;
constexpr int kList = 0xB20027, kProgress = 0xB20023;

class IpcMessageClientTest : public PipeTest {};

std::unique_ptr<IPCMessageClient> Client(int endpointId) {
    return std::make_unique<IPCMessageClient>(endpointId, true, false, kPipe);
}

// A broker, and a page that collects its lists.
class ListeningPageTest : public IpcMessageClientTest {
protected:
    ListeningPageTest() {
        broker.Start();
        page->RegisterMessageCallback(kList, inbox.Callback());
    }

    IPCBroker broker{kPipe};
    Inbox inbox;
    const std::unique_ptr<IPCMessageClient> page = Client(kPage);
};

TEST_F(ListeningPageTest, EveryFieldOfAMessageArrives) {
    std::string data = "a\0b"s;
    TagIPCMessageItem item;
    item.text = "a text that is too long for the small buffer of a string";
    item.destId = kPage;
    item.sourceId = kService;
    item.msgId = kList;
    item.headerWord1 = 1;
    item.headerWord2 = 2;
    item.headerWord3 = -3;
    item.headerWord4 = 4;
    item.flag = 255;
    item.dataLen = 3;
    item.data = data.data();
    EXPECT_TRUE(Client(kService)->PostIPCMessage(item));

    const auto received = inbox.WaitFor(1);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].item.text, item.text);
    EXPECT_EQ(received[0].item.destId, kPage);
    EXPECT_EQ(received[0].item.sourceId, kService);
    EXPECT_EQ(received[0].item.msgId, kList);
    EXPECT_EQ(received[0].item.headerWord1, 1);
    EXPECT_EQ(received[0].item.headerWord2, 2);
    EXPECT_EQ(received[0].item.headerWord3, -3);
    EXPECT_EQ(received[0].item.headerWord4, 4);
    EXPECT_EQ(received[0].item.flag, 255);
    EXPECT_EQ(received[0].data, data);
    EXPECT_TRUE(received[0].zeroBehindData);
}

TEST_F(ListeningPageTest, AnEmptyPayloadIsANullPointer) {
    char unused = 'x';
    TagIPCMessageItem item;
    item.destId = kPage;
    item.msgId = kList;
    item.data = &unused;
    EXPECT_TRUE(page->PostIPCMessage(item));
    const auto received = inbox.WaitFor(1);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_FALSE(received[0].hadData);
    EXPECT_EQ(received[0].item.dataLen, 0);
}

TEST_F(IpcMessageClientTest, AMessageReachesOnlyItsEndpointAndItsId) {
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox pageList, pageProgress, serviceList;
    const auto page = Client(kPage), service = Client(kService);
    page->RegisterMessageCallback(kList, pageList.Callback());
    page->RegisterMessageCallback(kProgress, pageProgress.Callback());
    service->RegisterMessageCallback(kList, serviceList.Callback());
    Post(*page, kService, kList, "to the service");
    Post(*service, kPage, kList, "to the page");
    Post(*service, kPage, kProgress, "progress");
    EXPECT_THAT(pageProgress.WaitForData(1), ElementsAre("progress"));
    EXPECT_THAT(pageList.WaitForData(1), ElementsAre("to the page"));
    EXPECT_THAT(serviceList.WaitForData(1), ElementsAre("to the service"));
}

TEST_F(IpcMessageClientTest, EveryClientOfAnEndpointGetsACopyOfItsOwn) {
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox first, second;
    const auto one = Client(kPage), two = Client(kPage);
    one->RegisterMessageCallback(kList, [&, inbox = first.Callback()](TagIPCMessageItem& item) {
        inbox(item);
        item.data[0] = '!';
    });
    two->RegisterMessageCallback(kList, second.Callback());
    Post(*one, kPage, kList, "a");
    Post(*one, kPage, kList, "b");
    EXPECT_THAT(first.WaitForData(2), ElementsAre("a", "b"));
    EXPECT_THAT(second.WaitForData(2), ElementsAre("a", "b"));
}

TEST_F(ListeningPageTest, TheLargestPayloadArrivesAndALargerOneIsRefused) {
    EXPECT_TRUE(Post(*page, kPage, kList, std::string(ipc_client::kMaxDataBytes, 'x')));
    EXPECT_FALSE(Post(*page, kPage, kList, std::string(ipc_client::kMaxDataBytes + 1, 'x')));
    const auto received = inbox.WaitFor(1);
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].data, std::string(ipc_client::kMaxDataBytes, 'x'));
    EXPECT_TRUE(received[0].zeroBehindData);
}

TEST_F(ListeningPageTest, WhatATraceThrowsKeepsNoMessageFromBeingPostedAndDelivered) {
    std::atomic<int> shown = 0;
    struct TraceUntilEnd {
        ~TraceUntilEnd() { SetIpcTrace(nullptr); }
    } const untilEnd;
    SetIpcTrace([&shown](IpcTraceEvent, const TagIPCMessageItem&) {
        ++shown;
        throw std::runtime_error("the disk is full");
    });
    EXPECT_TRUE(Post(*page, kPage, kList, "news"));
    EXPECT_THAT(inbox.WaitForData(1), ElementsAre("news"));
    EXPECT_EQ(shown, 2) << "posted, delivered";
}

TEST_F(IpcMessageClientTest, AMessageWithoutTheDataItAnnouncesIsRefused) {
    const auto page = Client(kPage);
    TagIPCMessageItem item;
    item.dataLen = 1;
    EXPECT_FALSE(page->PostIPCMessage(item));
    item.dataLen = -1;
    EXPECT_FALSE(page->PostIPCMessage(item));
}

TEST_F(IpcMessageClientTest, AHundredThousandMessagesArriveInOrderAndWithoutLoss) {
    constexpr int kCount = 100000;
    IPCBroker broker(kPipe);
    broker.Start();
    const auto page = Client(kPage), service = Client(kService);
    std::atomic<int> next{0}, wrong{0};
    page->RegisterMessageCallback(kProgress, [&](TagIPCMessageItem& item) {
        if (std::stoi(std::string(item.data, static_cast<std::size_t>(item.dataLen))) != next) ++wrong;
        ++next;
    });
    for (int i = 0; i < kCount; ++i) ASSERT_TRUE(Post(*service, kPage, kProgress, std::to_string(i)));
    EXPECT_TRUE(WaitUntil([&] { return next == kCount; })) << next;
    EXPECT_EQ(wrong, 0);
}

TEST_F(IpcMessageClientTest, MessagesOfSeveralPostingThreadsKeepEachThreadsOrder) {
    constexpr int kThreads = 4, kCount = 2000;
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox inbox;
    const auto page = Client(kPage);
    page->RegisterMessageCallback(kProgress, inbox.Callback());
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            const auto client = Client(kService);
            for (int i = 0; i < kCount; ++i) {
                TagIPCMessageItem item;
                item.destId = kPage;
                item.msgId = kProgress;
                item.sourceId = thread;
                item.headerWord1 = i;
                EXPECT_TRUE(client->PostIPCMessage(item));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    std::vector<int> next(kThreads, 0);
    for (const Received& received : inbox.WaitFor(kThreads * kCount)) {
        EXPECT_EQ(received.item.headerWord1, next[static_cast<std::size_t>(received.item.sourceId)]++);
    }
    EXPECT_THAT(next, testing::Each(kCount));
}

// Broker, receiver and sender in every order of starting.
TEST_F(IpcMessageClientTest, StartOrderDoesNotMatter) {
    std::string order = "BRS";
    do {
        SCOPED_TRACE(order);
        IPCBroker broker(kPipe);
        Inbox inbox;
        std::unique_ptr<IPCMessageClient> receiver, sender;
        for (const char part : order) {
            if (part == 'B') broker.Start();
            if (part == 'R') {
                receiver = Client(kPage);
                receiver->RegisterMessageCallback(kList, inbox.Callback());
            }
            if (part == 'S') {
                sender = Client(kService);
                EXPECT_TRUE(Post(*sender, kPage, kList, "one"));
                EXPECT_TRUE(Post(*sender, kPage, kList, "two"));
            }
        }
        EXPECT_THAT(inbox.WaitForData(2), ElementsAre("one", "two"));
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(IpcMessageClientTest, AMessagePostedBeforeTheBrokerIsThereArrivesLater) {
    Inbox inbox;
    const auto page = Client(kPage);
    page->RegisterMessageCallback(kList, inbox.Callback());
    EXPECT_TRUE(Post(*page, kPage, kList, "early"));
    ASSERT_TRUE(Logged("cannot be reached"));
    EXPECT_FALSE(IsPipeConnected(kPipe));
    IPCBroker broker(kPipe);
    broker.Start();
    EXPECT_THAT(inbox.WaitForData(1), ElementsAre("early"));
    EXPECT_TRUE(IsPipeConnected(kPipe));
}

TEST_F(IpcMessageClientTest, ABrokerThatComesBackFindsRegistrationsAndQueuedPosts) {
    std::optional<IPCBroker> broker(std::in_place, kPipe);
    broker->Start();
    Inbox list, progress;
    const auto page = Client(kPage);
    page->RegisterMessageCallback(kList, list.Callback());
    Post(*page, kPage, kList, "before");
    EXPECT_THAT(list.WaitForData(1), ElementsAre("before"));

    broker.reset();
    ASSERT_TRUE(WaitUntil([] { return !IsPipeConnected(kPipe); }));
    page->RegisterMessageCallback(kProgress, progress.Callback());
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(Post(*page, kPage, kList, std::to_string(i)));
    EXPECT_TRUE(Post(*page, kPage, kProgress, "50"));

    broker.emplace(kPipe);
    broker->Start();
    EXPECT_THAT(progress.WaitForData(1), ElementsAre("50"));
    const auto received = list.WaitForData(101);
    ASSERT_EQ(received.size(), 101u);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(received[static_cast<std::size_t>(i) + 1], std::to_string(i));
}

TEST_F(IpcMessageClientTest, TheConnectionsSinkIsToldWhenItOpensAndWhenItIsLost) {
    std::atomic<int> changes = 0;
    SetPipeConnectionSink([&changes] { ++changes; });
    const auto page = Client(kPage);
    ASSERT_TRUE(WaitUntil([&] { return changes > 0; }));  // not reached
    std::optional<IPCBroker> broker(std::in_place, kPipe);
    const int before = changes;
    broker->Start();
    ASSERT_TRUE(WaitUntil([&] { return changes > before && IsPipeConnected(kPipe); }));
    const int open = changes;
    broker.reset();
    ASSERT_TRUE(WaitUntil([&] { return changes > open && !IsPipeConnected(kPipe); }));
    SetPipeConnectionSink({});
    const int ended = changes;
    broker.emplace(kPipe);
    broker->Start();
    ASSERT_TRUE(WaitUntil([] { return IsPipeConnected(kPipe); }));
    EXPECT_EQ(changes, ended);
}

TEST_F(IpcMessageClientTest, WhatIsUnregisteredWhileTheBrokerIsAwayIsNotAnnouncedAgain) {
    Inbox list, other;
    const auto page = Client(kPage), second = Client(kPage);
    page->RegisterMessageCallback(kList, list.Callback());
    page->RegisterMessageCallback(kProgress, list.Callback());
    EXPECT_TRUE(page->UnRegisterMessageCallback(kList));
    IPCBroker broker(kPipe);
    broker.Start();
    Post(*page, kPage, kList, "waits at the broker");
    Post(*page, kPage, kProgress, "arrives");
    EXPECT_THAT(list.WaitForData(1), ElementsAre("arrives"));
    second->RegisterMessageCallback(kList, other.Callback());
    EXPECT_THAT(other.WaitForData(1), ElementsAre("waits at the broker"));
}

TEST_F(IpcMessageClientTest, TheQueueOfAConnectionThatIsNotOpenIsBounded) {
    const auto page = Client(kPage);
    const std::string large(ipc_client::kMaxDataBytes - 1000, 'x');
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(Post(*page, kPage, kList, large));
    EXPECT_FALSE(Post(*page, kPage, kList, large));
    EXPECT_TRUE(Post(*page, kPage, kList, "small"));
}

TEST_F(IpcMessageClientTest, TheLastClientOfAProcessWritesOutWhatItPosted) {
    IPCBroker broker(kPipe);
    broker.Start();
    { Post(*Client(kService), kPage, kList, std::string(1024 * 1024, 'l')); }
    EXPECT_FALSE(IsPipeConnected(kPipe));
    Inbox inbox;
    const auto page = Client(kPage);
    page->RegisterMessageCallback(kList, inbox.Callback());
    EXPECT_EQ(inbox.WaitFor(1).size(), 1u);
}

TEST_F(IpcMessageClientTest, TheLastClientGivesUpTheUiTurnWhileItWaitsForItsPostToBeWritten) {
    const RawBroker broker(SocketPath(), "");  // takes the connection and never says hello
    std::unique_ptr<IPCMessageClient> client = Client(kPage);
    EXPECT_TRUE(Post(*client, kService, kList));
    std::atomic<bool> asks{false}, destroyed{false}, hadTheTurnMeanwhile{false};
    std::thread other;
    {
        const kernel::UiTurn turn;
        other = std::thread([&] {
            asks = true;
            const kernel::UiTurn mine;
            hadTheTurnMeanwhile = !destroyed;
        });
        EXPECT_TRUE(WaitUntil([&] { return asks.load(); }));
        client.reset();
        destroyed = true;
    }
    other.join();
    EXPECT_TRUE(hadTheTurnMeanwhile);
}

TEST_F(IpcMessageClientTest, ClientsOfOneProcessShareOneConnection) {
    IPCBroker broker(kPipe);
    broker.Start();
    std::vector<std::unique_ptr<IPCMessageClient>> clients;
    for (int i = 0; i < 2000; ++i) clients.push_back(Client(kPage));
    Inbox inbox;
    clients.front()->RegisterMessageCallback(kList, inbox.Callback());
    for (const auto& client : clients) EXPECT_TRUE(Post(*client, kPage, kList));
    EXPECT_EQ(inbox.WaitFor(2000).size(), 2000u);
    EXPECT_EQ(CountLogged("opened"), 1);
}

TEST_F(IpcMessageClientTest, AClientThatDoesNotReceiveTakesNoCallback) {
    IPCMessageClient client(kPage, false, false, kPipe);
    client.RegisterMessageCallback(kList, [](TagIPCMessageItem&) {});
    EXPECT_TRUE(Logged("does not receive"));
    EXPECT_FALSE(client.UnRegisterMessageCallback(kList));
}

}  // namespace
}  // namespace ipc_test
