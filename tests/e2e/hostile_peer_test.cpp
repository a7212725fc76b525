// Peers that write what they like into the running service's pipe, while an update of a healthy host goes on, or into
// its list.

#include <random>

#include "base/file.h"
#include "base/process.h"
#include "channel/messages.h"
#include "channel_client.h"
#include "ipc/message_frame.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_message_client.h"
#include "page_e2e_test.h"
#include "wire/frame.h"

namespace e2e {
namespace {

namespace from_page = channel::from_page;
namespace to_page = channel::to_page;
using ipc_test::Hello;
using ipc_test::RawPeer;
using std::literals::operator""s;
using testing::Each;
using testing::StartsWith;

// Makes this process, too, find its pipes in the folder.
class PipeFolderOfThisProcess {
public:
    explicit PipeFolderOfThisProcess(const std::filesystem::path& folder) {
        base::SetVariable("BRINDLE_PIPE_DIR", base::Utf8FromPath(folder));
    }
    ~PipeFolderOfThisProcess() { base::SetVariable("BRINDLE_PIPE_DIR", std::nullopt); }
    PipeFolderOfThisProcess(const PipeFolderOfThisProcess&) = delete;
    PipeFolderOfThisProcess& operator=(const PipeFolderOfThisProcess&) = delete;
};

class HostileFramesBase : public PageE2ETest {
protected:
    std::string RandomBytes(std::size_t size) {
        std::string bytes(size, '\0');
        for (char& byte : bytes) byte = static_cast<char>(m_random());
        return bytes;
    }

    static std::string Frame(std::int32_t endpoint, std::int32_t msgId, std::string payload) {
        return ipc_test::MessageFrame(std::move(payload), {endpoint, msgId}, IPC_ENDPOINT_PLUGIN);
    }

    template <class Message>
    static std::string Frame(const Message& message, const std::string& payload) {
        return Frame(message.endpoint, message.id, payload);
    }

    // A hundred of each message that goes to that endpoint.
    void WriteRandomPayloadsTo(std::int32_t endpoint) {
        RawPeer peer(PipeSocket());
        ASSERT_TRUE(peer.Write(Hello()));
        for (int round = 0; round < 100; ++round) {
            for (const channel::MessageInfo& message : channel::kMessages) {
                if (message.endpoint != endpoint) continue;
                ASSERT_TRUE(peer.Write(Frame(message, RandomBytes(m_random() % 60)))) << round;
            }
        }
    }

    std::unique_ptr<Host> m_host;
    std::mt19937 m_random{4711};
};

// Another process than the service and the host.
class HostileFramesTest : public HostileFramesBase {
protected:
    void SetUp() override {
        AddAccessory("pen");
        StartService({"--rate", kSlowRate});
        m_host = StartHost();
        ASSERT_TRUE(m_host->Play(WaitForRows(1, "pen") + "click penupdateBtn\nwait percent penprogress 3"));
    }

    // The update that ran meanwhile comes to its end on the connection that it began with.
    void TearDown() override {
        ASSERT_TRUE(m_host->Play("wait text penprogress \"Up to date\" within 60\nwait nothing-left"));
        m_host->End();
        EXPECT_THAT(m_host->Log(), Not(HasSubstr("connection lost")));
        EXPECT_EQ(ReadFile(Arrived("pen")), PackageContent("pen"));
    }
};

TEST_F(HostileFramesTest, WrongFramesCloseTheirConnectionWithALineThatSaysWhy) {
    const struct {
        std::string bytes;
        const char* reason;
    } cases[] = {
        {"GET / HTTP/1.1\r\n\r\n", "the handshake does not begin with the magic bytes"},
        {Hello() + "\x00\x00\x00\x00\x0E"s, "unknown frame type 14"},
        {Hello() + "\xFF\xFF\xFF\xFF\x01"s, "a frame of 4294967295 bytes is over the limit"},
        {Hello() + "\x03\x00\x00\x00\x01xyz"s, "a message frame of 3 bytes is too short"},
        {Hello() + "\x04\x00\x00\x00\x02xxxx"s, "a list of routes of 4 bytes"},
    };
    for (const auto& wrong : cases) {
        SCOPED_TRACE(wrong.reason);
        RawPeer peer(PipeSocket());
        peer.Write(wrong.bytes);
        EXPECT_TRUE(peer.IsClosedByPeer());
        EXPECT_TRUE(ServiceLogs(wrong.reason)) << ServiceLog();
    }
}

TEST_F(HostileFramesTest, AFrameCutShortByItsSendersEndIsNoMessage) {
    const std::string frame = Frame(from_page::IPC_MSG_DOWNLOAD_START, "dock\0"s);
    for (std::size_t length = 0; length < frame.size(); ++length) {
        RawPeer peer(PipeSocket());
        ASSERT_TRUE(peer.Write(Hello() + frame.substr(0, length)));
    }
    RawPeer peer(PipeSocket());
    ASSERT_TRUE(peer.Write(Hello() + frame));
    ASSERT_TRUE(ServiceLogs("dock: start refused: the catalogue does not have it"));
    const std::string log = ServiceLog();
    EXPECT_EQ(log.find("start refused"), log.rfind("start refused")) << log;
}

TEST_F(HostileFramesTest, RandomStreamsEndInAClosedConnection) {
    for (int round = 0; round < 40; ++round) {
        RawPeer peer(PipeSocket());
        peer.Write((round % 2 == 0 ? Hello() : "") + RandomBytes(2000));
        EXPECT_TRUE(peer.IsClosedByPeer()) << round;
    }
}

TEST_F(HostileFramesTest, RandomPayloadsOfWholeRequestsDoNotHarmTheService) {
    WriteRandomPayloadsTo(IPC_ENDPOINT_UPDATE_SERVICE);
    EXPECT_TRUE(ServiceLogs("start refused: the catalogue does not have it"));
}

TEST_F(HostileFramesTest, WhatItTellsAPageOrAHostDoesNotReachThem) {
    RawPeer peer(PipeSocket());
    ASSERT_TRUE(peer.Write(
        Hello() + Frame(to_page::IPC_MSG_PKG_FINISH, "pen\0"s) + Frame(from_page::IPC_MSG_PLUGIN_UPDATE, "the end\0"s) +
        Frame(from_page::IPC_MSG_CONTENT_HEIGHT, "4711") + Frame(from_page::IPC_MSG_DOWNLOAD_START, "dock\0"s)));
    ASSERT_TRUE(ServiceLogs("dock: start refused: the catalogue does not have it"));  // so all has been routed
    ASSERT_TRUE(m_host->Play("wait percent penprogress 6\nwait running 1"));
    EXPECT_THAT(m_host->Transcript(), Not(HasSubstr("the end")));
    EXPECT_THAT(m_host->Transcript(), Not(HasSubstr("4711")));
    EXPECT_THAT(m_host->Log(), Not(HasSubstr("RecPkgFinish enter")));
}

// A service, in this process, that says what it likes to a host that shows one accessory and has begun its update.
class HostileServiceTest : public HostileFramesBase {
protected:
    void SetUp() override {
        m_broker.Start();
        channel_client::Listen(m_service, from_page::IPC_MSG_ALL_UPDATE_DATA, [this](const auto&) {
            AccessoryVersionDataInfo pen;
            pen.deviceKey = "pen";
            pen.modelId = L"IDS_NAME_PEN";
            pen.version = L"2.0";
            channel_client::Post(m_service, IPC_ENDPOINT_UPDATE_SERVICE, to_page::IPC_MSG_ALL_UPDATE_DATA, {pen});
        });
        m_host = StartHost();
        ASSERT_TRUE(m_host->Play(WaitForRows(1, "pen") + "click penupdateBtn\nwait running 1"));
    }

    void TearDown() override { m_host->End(); }

    // What the host has said of heights that it does not believe.
    std::vector<std::string> RefusedHeights() const {
        std::vector<std::string> refused;
        for (const std::string& line : m_host->Program().Output().Lines()) {
            if (line.find(", which is no number; ignored") != std::string::npos) refused.push_back(line);
        }
        return refused;
    }

    const PipeFolderOfThisProcess m_folderVariable{m_folder / "pipes"};
    IPCBroker m_broker{IPC_PIPE_ASSISTANT};
    IPCMessageClient m_service{IPC_ENDPOINT_UPDATE_SERVICE, true, false, IPC_PIPE_ASSISTANT};
};

// They are no offence against the protocol, so the page gets them.
TEST_F(HostileServiceTest, RandomPayloadsOfWholeMessagesDoNotHarmThePage) {
    WriteRandomPayloadsTo(IPC_ENDPOINT_PLUGIN);
    EXPECT_TRUE(m_host->Program().Errors().WaitFor("AccessoriesUpdateWnd RecPkgFail enter"));
    ASSERT_TRUE(m_host->Play("wait running 1"));
}

// The host believes heights that are numbers, however large, and no others; an update that began and ended is over,
// however its accessory is called.
TEST_F(HostileServiceTest, GarbageAtTheHostsEndpointsIsToldAndLeavesTheHostAsItWas) {
    constexpr std::int32_t kUnknown = 0x5EED;
    RawPeer peer(PipeSocket());
    ASSERT_TRUE(peer.Write(Hello()));
    for (int round = 0; round < 100; ++round) {
        const std::string payload = RandomBytes(m_random() % 60);
        ASSERT_TRUE(peer.Write(Frame(from_page::IPC_MSG_CONTENT_HEIGHT, payload + 'x') +
                               Frame(from_page::IPC_MSG_PLUGIN_UPDATE, payload) +
                               Frame(from_page::IPC_MSG_PLUGIN_UPDATE_FINISH, payload)));
        for (const auto endpoint : {IPC_ENDPOINT_HOST_LAYOUT, IPC_ENDPOINT_HOST_PLUGIN, IPC_ENDPOINT_HOST_STATUS}) {
            ASSERT_TRUE(peer.Write(Frame(endpoint, kUnknown, payload)));
        }
    }
    for (const char* height : {"", "7x", " 7", "99999999999", "2147483647", "-2147483648", "0", "77"}) {
        ASSERT_TRUE(peer.Write(Frame(from_page::IPC_MSG_CONTENT_HEIGHT, height)));
    }
    ASSERT_TRUE(peer.Write(Frame(from_page::IPC_MSG_PLUGIN_UPDATE, "the end\0"s)));
    ASSERT_TRUE(m_host->Program().Output().WaitFor("host: update of the end runs")) << m_host->Transcript();
    ASSERT_TRUE(peer.Write(Frame(from_page::IPC_MSG_PLUGIN_UPDATE_FINISH, "the end\0"s)));
    ASSERT_TRUE(m_host->Play("wait running 1\nwait height 77\nwait shown accessoriesView\nwait shown penprogress"));
    EXPECT_THAT(RefusedHeights(), testing::SizeIs(testing::Ge(100u)));
    for (const char* height : {"\"\"", "\"7x\"", "\" 7\"", "\"99999999999\""}) {
        EXPECT_THAT(RefusedHeights(), Contains(HasSubstr(height)));
    }
}

// Whoever may choose a key does not choose what the service and the host say.
const std::string kForgingKey = "dock\n# forged\r\x1B[2J";
const std::string kForgingKeyShown = "dock\\n# forged\\r\\x1B[2J";

TEST_F(HostileFramesTest, AKeyMakesNoLinesOfItsOwnInTheServicesLog) {
    RawPeer peer(PipeSocket());
    ASSERT_TRUE(peer.Write(Hello() + Frame(from_page::IPC_MSG_DOWNLOAD_START, kForgingKey + '\0')));
    EXPECT_TRUE(ServiceLogs(kForgingKeyShown + ": start refused")) << ServiceLog();
    EXPECT_THAT(m_service->Errors().Lines(), Each(Not(StartsWith("# forged"))));
}

TEST_F(HostileServiceTest, AKeyMakesNoLinesOfItsOwnInTheTranscript) {
    RawPeer peer(PipeSocket());
    ASSERT_TRUE(peer.Write(Hello() + Frame(from_page::IPC_MSG_PLUGIN_UPDATE, kForgingKey + '\0') +
                           Frame(from_page::IPC_MSG_PLUGIN_UPDATE_FINISH, kForgingKey + '\0') +
                           Frame(from_page::IPC_MSG_CONTENT_HEIGHT, "77\n# forged")));
    EXPECT_TRUE(m_host->Program().Output().WaitFor("holds \"77\\n# forged\"")) << m_host->Transcript();
    EXPECT_TRUE(m_host->Program().Output().WaitFor("host: update of " + kForgingKeyShown + " has stopped"));
    EXPECT_THAT(m_host->Program().Output().Lines(), Contains("host: update of " + kForgingKeyShown + " runs"));
    EXPECT_THAT(m_host->Program().Output().Lines(), Each(Not(StartsWith("# forged"))));
}

class HostileListTest : public PageE2ETest {};

TEST_F(HostileListTest, ATextOfTheListMakesNoLinesOfItsOwn) {
    AddAccessory("pen");
    nlohmann::ordered_json catalogue = nlohmann::ordered_json::parse(ReadFile(m_folder / "catalogue.json"));
    catalogue["accessories"][0]["version"] = "2.0\n# forged";
    catalogue["accessories"][0]["description"] = {"Steadier.\n# forged", "Lighter.\r# forged"};
    WriteFile(m_folder / "catalogue.json", catalogue.dump());
    StartService();
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(WaitForRows(1, "pen") + "click penpulldown\nwait shown pendevInfo"));
    host->End();
    EXPECT_THAT(host->Transcript(), HasSubstr("\n    Drawing Pen | Firmware version 2.0\\n# forged | <Update>\n"
                                              "        Steadier.\n        # forged\n        Lighter.\\r# forged\n"));
    EXPECT_THAT(host->Program().Output().Lines(), Each(Not(StartsWith("# forged"))));
}

}  // namespace
}  // namespace e2e
