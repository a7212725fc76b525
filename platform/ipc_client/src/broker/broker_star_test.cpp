// Who reaches whom: the service everybody, any other process the service and itself.

#include <gmock/gmock.h>

#include "ipc/foreign_peer.h"
#include "ipc/message_frame.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_message_client.h"
#include "wire/frame.h"

namespace ipc_test {
namespace {

using ::testing::ElementsAre;

constexpr int kService = 0xB20001, kPage = 0x270000, kHost = 0x1B0000, kRequest = 1, kList = 2, kHeight = 3;

std::string Message(int destId, int msgId, std::string data) {
    return MessageFrame(std::move(data), {destId, msgId}, 1);
}

// A broker and its service in this process; pages and hosts in others.
class BrokerStar : public PipeTest {
protected:
    BrokerStar() : m_broker(kPipe), m_service(kService, true, false, kPipe) { m_broker.Start(); }

    // A process that has announced the page's and the host's routes: the broker knows, as it has answered for itself.
    struct Peer : ForeignPeer {
        explicit Peer(const std::filesystem::path& path) : ForeignPeer(path) {
            const std::string own = Message(kPage, kHeight, "taken");
            EXPECT_TRUE(Write(Hello() + AnnouncementFrame({{kPage, kList}, {kPage, kHeight}, {kHost, kHeight}}) + own));
            EXPECT_EQ(Read(8 + own.size()), Hello() + own);
        }
    };

    IPCBroker m_broker;
    IPCMessageClient m_service;
};

TEST_F(BrokerStar, WhatAPageTellsItsHostReachesTheHostOfItsOwnProcessOnly) {
    Peer one(SocketPath()), other(SocketPath());
    const std::string height = Message(kHost, kHeight, "184"), otherHeight = Message(kHost, kHeight, "77");
    ASSERT_TRUE(one.Write(height));
    EXPECT_EQ(one.Read(height.size()), height);
    ASSERT_TRUE(other.Write(otherHeight));
    EXPECT_EQ(other.Read(otherHeight.size()), otherHeight);
}

TEST_F(BrokerStar, TheServiceReachesEveryPage) {
    Peer one(SocketPath()), other(SocketPath());
    Post(m_service, kPage, kList, "list");
    const std::string list = Message(kPage, kList, "list");
    EXPECT_EQ(one.Read(list.size()), list);
    EXPECT_EQ(other.Read(list.size()), list);
}

TEST_F(BrokerStar, NobodyElseHearsWhatTheServiceIsAskedOrSpeaksToAPage) {
    Inbox requests;
    m_service.RegisterMessageCallback(kRequest, requests.Callback());
    Post(m_service, kService, kRequest, "of the service, which has announced");
    ASSERT_EQ(requests.WaitFor(1).size(), 1u);
    Peer page(SocketPath());
    ForeignPeer spy(SocketPath());
    const std::string own = Message(kService, kRequest, "of the spy");
    ASSERT_TRUE(spy.Write(Hello() + AnnouncementFrame({{kService, kRequest}}) + own + Message(kPage, kList, "forged")));
    EXPECT_EQ(spy.Read(8 + own.size()), Hello() + own);
    ASSERT_TRUE(page.Write(Message(kService, kRequest, "of the page")));
    EXPECT_THAT(requests.WaitForData(3), ElementsAre(testing::_, "of the spy", "of the page"));
    const std::string last = Message(kPage, kList, "of the service");
    Post(m_service, kPage, kList, "of the service");
    EXPECT_EQ(page.Read(last.size()), last);
    ASSERT_TRUE(spy.Write(own));
    EXPECT_EQ(spy.Read(own.size()), own);
    m_service.UnRegisterMessageCallbackAll();
}

TEST_F(BrokerStar, WhatWaitsForAHostIsForTheHostOfItsOwnProcess) {
    const std::string height = Message(kHost, kHeight, "184"), own = Message(kPage, kHeight, "taken");
    ForeignPeer page(SocketPath());
    ASSERT_TRUE(page.Write(Hello() + height + AnnouncementFrame({{kPage, kHeight}}) + own));
    EXPECT_EQ(page.Read(8 + own.size()), Hello() + own);
    Peer other(SocketPath());  // announces the host's route, and gets its own message as the first
    ASSERT_TRUE(page.Write(AnnouncementFrame({{kHost, kHeight}})));
    EXPECT_EQ(page.Read(height.size()), height);
}

TEST_F(BrokerStar, WhatTheServiceSaidWaitsForAPageThatComesBack) {
    Inbox echo;
    m_service.RegisterMessageCallback(kRequest, echo.Callback());
    Post(m_service, kPage, kList, "end");
    Post(m_service, kService, kRequest, "behind it");
    EXPECT_THAT(echo.WaitForData(1), ElementsAre("behind it"));
    m_service.UnRegisterMessageCallbackAll();
    ForeignPeer page(SocketPath());
    ASSERT_TRUE(page.Write(Hello() + AnnouncementFrame({{kPage, kList}})));
    const std::string end = Message(kPage, kList, "end");
    EXPECT_EQ(page.Read(8 + end.size()), Hello() + end);
}

TEST_F(BrokerStar, ARequestWaitsForTheServiceAlsoWhenItsSenderHasGone) {
    {
        ForeignPeer page(SocketPath());
        ASSERT_TRUE(page.Write(Hello() + Message(kService, kRequest, "start")));
    }
    ASSERT_TRUE(Logged("closed: the other side closed it"));
    Inbox requests;
    m_service.RegisterMessageCallback(kRequest, requests.Callback());
    EXPECT_THAT(requests.WaitForData(1), ElementsAre("start"));
    m_service.UnRegisterMessageCallbackAll();
}

}  // namespace
}  // namespace ipc_test
