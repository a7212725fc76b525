#include "ipc_page_link.h"

#include <gmock/gmock.h>

#include <future>

#include "ipc_client/ipc_broker.h"
#include "kernel/code_pages.h"
#include "nothrow_failure.h"
#include "service_test_support.h"
#include "test_pipe.h"

namespace update_service {
namespace {

namespace from_page = channel::from_page;
namespace to_page = channel::to_page;
using namespace std::string_literals;
using testing::ElementsAre;

class RecordingRequests final : public PageRequests {
public:
    void OnReady(const IpcLife&) override { asked.Add("ready"); }
    void OnStart(const IpcLife&, const std::string& deviceKey) override { asked.Add("start " + deviceKey); }
    void OnPause(const IpcLife&, const std::string& deviceKey) override { asked.Add("pause " + deviceKey); }
    void OnReturned(const IpcLife&) override { asked.Add("returned"); }
    void OnLeft(const IpcLife&) override { asked.Add("left"); }

    Record asked;
};

class PageLinkOverThePipe : public testing::Test {
protected:
    PageLinkOverThePipe() {
        m_broker.Start();
        // Once it has asked, it is there.
        m_client.RegisterMessageCallback(from_page::IPC_MSG_ALL_UPDATE_DATA.id, [this](TagIPCMessageItem&) {
            m_thePage.set_value({CurrentIpcSender().life});
        });
        m_page.Ready();
        m_pages = m_thePage.get_future().get();
        m_client.UnRegisterMessageCallbackAll();
    }
    ~PageLinkOverThePipe() override { kernel::SetAnsiCodePage(kernel::kCodePageUtf8); }

    // The messages, once that many have come.
    std::vector<PipePage::Message> Messages(std::size_t count) {
        EXPECT_TRUE(m_page.Wait([&](const auto& messages) { return messages.size() >= count; }));
        return m_page.Messages();
    }

    TestPipe m_pipe;
    IPCBroker m_broker{IPC_PIPE_ASSISTANT};
    PipePage m_page;
    IPCMessageClient m_client{IPC_ENDPOINT_UPDATE_SERVICE, true, false, IPC_PIPE_ASSISTANT};
    std::promise<Pages> m_thePage;
    Pages m_pages;
    Record m_log;
    IpcPageLink m_link{m_client, Log([this](LOG_MESSAGE_LEVEL, const std::string& line) { m_log.Add(line); })};
};

TEST_F(PageLinkOverThePipe, MessagesHaveTheBytesOfTheProtocol) {
    m_link.SendProgress(m_pages, "AB", 37);
    m_link.Send(m_pages, to_page::IPC_MSG_PKG_FINISH, "AB", 0);
    m_link.Send(m_pages, to_page::IPC_MSG_PKG_FAIL, "", 0);
    m_link.SendList(m_pages.at(0), {});
    // Messages of one client arrive in their order.
    const auto messages = Messages(4);
    EXPECT_EQ(messages[0].msgId, to_page::IPC_MSG_DOWNLOAD_PROCESS.id);
    EXPECT_EQ(messages[0].data, "\1\0\0\0\2\0\0\0AB\x25\0\0\0"s);
    EXPECT_EQ(messages[1].msgId, to_page::IPC_MSG_PKG_FINISH.id);
    EXPECT_EQ(messages[1].data, "AB\0"s);
    EXPECT_EQ(messages[2].msgId, to_page::IPC_MSG_PKG_FAIL.id);
    EXPECT_EQ(messages[2].data, "\0"s);
    EXPECT_EQ(messages[3].msgId, to_page::IPC_MSG_ALL_UPDATE_DATA.id);
    EXPECT_EQ(messages[3].data, "\1\0\0\0\0\0\0\0"s);
    for (const auto& message : messages) EXPECT_EQ(message.sourceId, IPC_ENDPOINT_UPDATE_SERVICE);
}

TEST_F(PageLinkOverThePipe, TheListCarriesEveryField) {
    Accessory pen;
    pen.deviceKey = "pen";
    pen.modelId = "IDS_NAME_PEN";
    pen.image = "pen.png";
    pen.version = "2.4.1";
    pen.description = {"One", "\xF0\x9F\x96\xB1 \xE7\xAC\x94", ""};
    pen.isDriver = true;
    Accessory dock;
    dock.deviceKey = "dock";
    m_link.SendList(m_pages.at(0), {pen, dock});
    const auto list = channel::Decode<std::vector<AccessoryVersionDataInfo>>(Messages(1)[0].data);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].deviceKey, "pen");
    EXPECT_EQ(list[0].modelId, L"IDS_NAME_PEN");
    EXPECT_EQ(list[0].imagePath, L"pen.png");
    EXPECT_EQ(list[0].version, L"2.4.1");
    EXPECT_THAT(list[0].descLines, ElementsAre(L"One", L"\U0001F5B1 \u7B14", L""));
    EXPECT_EQ(list[0].reserved, 0u);
    EXPECT_TRUE(list[0].isDriver);
    EXPECT_EQ(list[1].deviceKey, "dock");
    EXPECT_FALSE(list[1].isDriver);
}

TEST_F(PageLinkOverThePipe, TheAnswerToAPageThatHasLeftReachesNoOther) {
    const IpcLife left{{9}};
    m_link.SendList(left, {});
    m_link.SendProgress({left}, "AB", 37);
    m_link.Send({}, to_page::IPC_MSG_PKG_FAIL, "AB", 0);  // nobody lists it
    m_link.Send(m_pages, to_page::IPC_MSG_PKG_FINISH, "AB", 0);
    EXPECT_EQ(Messages(1)[0].msgId, to_page::IPC_MSG_PKG_FINISH.id);
}

TEST_F(PageLinkOverThePipe, ALongListArrivesWhole) {
    std::vector<Accessory> accessories(1000);
    for (std::size_t i = 0; i < accessories.size(); ++i) {
        accessories[i].deviceKey = std::to_string(i);
        accessories[i].description.assign(3, std::string(40, 'd'));
    }
    m_link.SendList(m_pages.at(0), accessories);
    const auto list = channel::Decode<std::vector<AccessoryVersionDataInfo>>(Messages(1)[0].data);
    ASSERT_EQ(list.size(), accessories.size());
    EXPECT_EQ(list.back().deviceKey, "999");
    EXPECT_EQ(list.back().descLines.back(), std::wstring(40, L'd'));
}

TEST_F(PageLinkOverThePipe, ARecordThatFindsNoMemoryIsNotSent) {
    {
        const NothrowFailure failure(1);
        m_link.SendProgress(m_pages, "AB", 37);
        EXPECT_TRUE(failure.Happened());
    }
    {
        const NothrowFailure failure(1);
        m_link.SendList(m_pages.at(0), {});
        EXPECT_TRUE(failure.Happened());
    }
    EXPECT_THAT(m_log.Lines(), ElementsAre("message 11665443 is not sent: memory is exhausted",
                                           "message 11665447 is not sent: memory is exhausted"));
    m_link.Send(m_pages, to_page::IPC_MSG_PKG_FINISH, "AB", 0);
    EXPECT_EQ(Messages(1)[0].msgId, to_page::IPC_MSG_PKG_FINISH.id);
}

TEST_F(PageLinkOverThePipe, KeysTravelInTheAnsiCodePage) {
    if (!kernel::SetAnsiCodePage(1252)) GTEST_SKIP() << "this system has another page";
    RecordingRequests requests;
    ReceiveRequests(m_client, requests);
    m_link.Send(m_pages, to_page::IPC_MSG_PKG_FINISH, "\xC3\xA9", 0);
    m_link.SendProgress(m_pages, "\xC3\xA9", 1);
    const auto messages = Messages(2);
    EXPECT_EQ(messages[0].data, "\xE9\0"s);
    EXPECT_EQ(channel::Decode<PkgDownloadProcess>(messages[1].data).deviceKey, "\xE9");
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"\xE9"});
    EXPECT_TRUE(requests.asked.Has("start \xC3\xA9"));
    m_client.UnRegisterMessageCallbackAll();
}

TEST_F(PageLinkOverThePipe, RequestsThatWaitedForTheServiceComeInTheirOrder) {
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"pen"});
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_PAUSE, {"pen"});
    m_page.Ready();
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"dock"});
    m_link.SendProgress(m_pages, "behind them", 1);
    Messages(1);
    RecordingRequests requests;
    ReceiveRequests(m_client, requests);
    ASSERT_TRUE(requests.asked.Has("start dock"));
    EXPECT_THAT(requests.asked.Lines(), ElementsAre("start pen", "pause pen", "ready", "start dock"));
    m_client.UnRegisterMessageCallbackAll();
}

TEST_F(PageLinkOverThePipe, RequestsArriveInTheirOrder) {
    RecordingRequests requests;
    ReceiveRequests(m_client, requests);
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"pen"});
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_PAUSE, {"pen"});
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"a\0b"s});
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_PAUSE, {""});
    m_page.Ready();
    ASSERT_TRUE(requests.asked.Has("ready"));
    EXPECT_THAT(requests.asked.Lines(), ElementsAre("start pen", "pause pen", "start a", "pause ", "ready"));
    m_client.UnRegisterMessageCallbackAll();
}

}  // namespace
}  // namespace update_service
