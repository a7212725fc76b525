// What the broker bounds, who pays for too much, and what it hands over at its end.

#include <gmock/gmock.h>

#include <atomic>
#include <deque>
#include <future>
#include <optional>

#include "ipc/foreign_peer.h"
#include "ipc/message_frame.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "ipc_client/ipc_message_client.h"
#include "wire/frame.h"

namespace ipc_test {
namespace {

using ::testing::ElementsAre;

constexpr int kService = 0xB20001, kPage = 0x270000, kRequest = 1, kFlood = 2, kList = 3;

std::string Announcement(const std::vector<ipc_client::Route>& routes) { return AnnouncementFrame(routes); }
std::string Message(int destId, int msgId, std::string data = "") {
    return MessageFrame(std::move(data), {destId, msgId});
}

class BrokerLimits : public PipeTest {
protected:
    void StartBroker(const IPCBrokerLimits& limits = {}) {
        m_broker.emplace(kPipe, limits);
        m_broker->Start();
    }

    std::optional<IPCBroker> m_broker;
};

TEST_F(BrokerLimits, AFlooderWaitsAndItsVictimLosesNothing) {
    constexpr std::size_t kFrames = 400;  // of 1 MiB: several times what may wait anywhere
    StartBroker();
    IPCMessageClient service(kService, true, false, kPipe);
    Inbox requests;
    std::atomic<std::size_t> floods{0};
    std::promise<void> enough;
    std::shared_future<void> mayGoOn = enough.get_future().share();
    service.RegisterMessageCallback(kRequest, requests.Callback());
    service.RegisterMessageCallback(kFlood, [&](TagIPCMessageItem&) {
        if (floods++ == 0) mayGoOn.wait();  // as one that is busy with something else
    });
    ForeignPeer flooder(SocketPath()), page(SocketPath());
    ASSERT_TRUE(flooder.Write(Hello()));
    flooder.BeginWrite(Message(kService, kFlood, std::string(1024 * 1024, 'f')), kFrames);
    ASSERT_TRUE(WaitUntil([&] { return floods == 1; }));
    ASSERT_TRUE(page.Write(Hello() + Message(kService, kRequest, "start")));
    enough.set_value();
    EXPECT_THAT(requests.WaitForData(1), ElementsAre("start"));
    EXPECT_TRUE(flooder.EndWrite());
    EXPECT_TRUE(WaitUntil([&] { return floods == kFrames; }));
    EXPECT_EQ(CountLogged("closed"), 0);
    EXPECT_EQ(CountLogged("dropped"), 0);
}

TEST_F(BrokerLimits, APageThatDoesNotReadIsClosedAndTheOthersGoOn) {
    IPCBrokerLimits limits;
    limits.outgoingBytes = 1024 * 1024;
    StartBroker(limits);
    const std::string taken = Message(kPage, kRequest);
    ForeignPeer silent(SocketPath()), other(SocketPath());
    for (ForeignPeer* peer : {&silent, &other}) {
        ASSERT_TRUE(peer->Write(Hello() + Announcement({{kPage, kFlood}, {kPage, kRequest}}) + taken));
        EXPECT_EQ(peer->Read(8 + taken.size()), Hello() + taken);
    }
    IPCMessageClient service(kService, true, false, kPipe);
    const std::string data(100 * 1024, 'f');
    const std::string frame = Message(kPage, kFlood, data);
    for (int i = 0; i < 40; ++i) {
        ASSERT_TRUE(Post(service, kPage, kFlood, data));
        EXPECT_EQ(other.Read(frame.size()).size(), frame.size());
    }
    EXPECT_TRUE(Logged("closed: it reads too slowly"));
    EXPECT_TRUE(silent.IsClosedByPeer());
}

TEST_F(BrokerLimits, UnfinishedFramesTakeOnlySoMuchOfAllTogether) {
    IPCBrokerLimits limits;
    limits.unfinishedBytes = 4 * 1024 * 1024;
    StartBroker(limits);
    const std::string unfinished = Hello() + Message(kService, kFlood, std::string(16 * 1024 * 1024, 'u'));
    std::deque<ForeignPeer> peers;
    for (int i = 0; i < 4; ++i) {
        peers.emplace_back(SocketPath());
        peers.back().Write(unfinished.substr(0, 1500 * 1024));
    }
    EXPECT_TRUE(Logged("closed: unfinished frames take too much memory"));
    EXPECT_LT(CountLogged("closed: unfinished frames take too much memory"), 4);
}

TEST_F(BrokerLimits, AConnectionMayAnnounceOnlySoManyRoutes) {
    IPCBrokerLimits limits;
    limits.routesPerConnection = 10;
    StartBroker(limits);
    std::vector<ipc_client::Route> routes;
    for (int i = 0; i < 10; ++i) routes.push_back({kPage, i});
    RawPeer peer(SocketPath());
    ASSERT_TRUE(peer.Write(Hello() + Announcement(routes) + Announcement(routes)));
    ASSERT_TRUE(peer.Write(Message(kPage, 1)));
    EXPECT_EQ(peer.Read(8), Hello());
    EXPECT_EQ(peer.Read(Message(kPage, 1).size()), Message(kPage, 1));
    peer.Write(Announcement({{kPage, 10}}));
    EXPECT_TRUE(peer.IsClosedByPeer());
    EXPECT_TRUE(Logged("closed: it announces more than 10 routes"));
}

TEST_F(BrokerLimits, OthersMayHaveOnlySoManyConnections) {
    IPCBrokerLimits limits;
    limits.connections = 2;
    StartBroker(limits);
    ForeignPeer one(SocketPath()), two(SocketPath());
    for (ForeignPeer* peer : {&one, &two}) {
        ASSERT_TRUE(peer->Write(Hello()));
        EXPECT_EQ(peer->Read(8), Hello());
    }
    ForeignPeer three(SocketPath());
    EXPECT_TRUE(three.IsClosedByPeer());
    EXPECT_TRUE(Logged("was refused: there are 2 connections"));
    RawPeer ofTheService(SocketPath());
    EXPECT_EQ(ofTheService.Read(8), Hello());
}

TEST_F(BrokerLimits, AProcessMayHaveOnlySoManyConnections) {
    IPCBrokerLimits limits;
    limits.connectionsPerProcess = 0;
    StartBroker(limits);
    ForeignPeer peer(SocketPath());
    EXPECT_TRUE(peer.IsClosedByPeer());
    EXPECT_TRUE(Logged("was refused: it has 0 connections"));
}

TEST_F(BrokerLimits, WhatWasPostedBeforeTheEndIsHandedOver) {
    constexpr int kRounds = 20, kMessages = 100;  // few enough for a pipe that is not read meanwhile
    for (int round = 0; round < kRounds; ++round) {
        StartBroker();
        ForeignPeer page(SocketPath());
        const std::string taken = Message(kPage, kRequest), last = Message(kPage, kList, "last");
        ASSERT_TRUE(page.Write(Hello() + Announcement({{kPage, kFlood}, {kPage, kList}, {kPage, kRequest}}) + taken));
        EXPECT_EQ(page.Read(8 + taken.size()), Hello() + taken);
        {
            IPCMessageClient service(kService, true, false, kPipe);
            const std::string data(100, 'f');
            for (int i = 0; i < kMessages; ++i) Post(service, kPage, kFlood, data);
            Post(service, kPage, kList, "last");
        }
        m_broker->Stop();
        const std::size_t bytes = kMessages * (Message(kPage, kFlood).size() + 100) + last.size();
        const std::string all = page.Read(bytes);
        ASSERT_EQ(all.size(), bytes) << round;
        EXPECT_TRUE(page.IsClosedByPeer());
    }
}

TEST_F(BrokerLimits, APeerThatClosesBeforeItHasReadIsHeard) {
    constexpr std::size_t kPeers = 300;
    StartBroker();
    IPCMessageClient service(kService, true, false, kPipe);
    Inbox requests;
    service.RegisterMessageCallback(kRequest, requests.Callback());
    for (std::size_t i = 0; i < kPeers; ++i) {
        RawPeer peer(SocketPath());
        ASSERT_TRUE(peer.Write(Hello() + Message(kService, kRequest, std::to_string(i))));
    }
    EXPECT_EQ(requests.WaitFor(kPeers).size(), kPeers);
}

class LinesOfTheLogTest : public PipeTest {};

TEST_F(LinesOfTheLogTest, AProcessThatComesAndGoesWithoutEndMakesNoLinesWithoutEnd) {
    std::string process;
    {
        IPCBroker broker(kPipe);
        broker.Start();
        ForeignPeer loud(SocketPath()), quiet(SocketPath());
        process = "process " + std::to_string(loud.Process());
        ASSERT_TRUE(loud.Visit(100));
        EXPECT_LE(CountLogged("(" + process + ")"), 60);
        EXPECT_TRUE(quiet.Write("wrong"));
        EXPECT_TRUE(quiet.IsClosedByPeer());
        EXPECT_TRUE(Logged("(process " + std::to_string(quiet.Process()) + ") closed: "));
    }
    EXPECT_TRUE(Logged(" lines about " + process + " were left out"));
}

}  // namespace
}  // namespace ipc_test
