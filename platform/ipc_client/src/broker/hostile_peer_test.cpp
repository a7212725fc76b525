// Peers that do not keep to the protocol, while a healthy pair goes on undisturbed.

#include <gmock/gmock.h>

#include <atomic>
#include <random>
#include <thread>

#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_message_client.h"
#include "wire/frame.h"

namespace ipc_test {
namespace {

using std::literals::operator""s;

constexpr int kService = 0xB20001, kPage = 0x270000, kList = 1, kFlood = 2;

IPCBrokerLimits SmallLimits() {
    IPCBrokerLimits limits;
    limits.handshake = std::chrono::milliseconds(500);
    return limits;
}

// Two clients that pass numbered messages all the time; the test fails when one is lost or a connection breaks.
class HostilePeerTest : public PipeTest {
protected:
    HostilePeerTest()
        : m_broker(kPipe, SmallLimits()), m_page(kPage, true, false, kPipe), m_service(kService, true, false, kPipe) {
        m_broker.Start();
        m_page.RegisterMessageCallback(kList, [this](TagIPCMessageItem& item) {
            if (item.headerWord1 != m_next) m_orderKept = false;
            ++m_next;
        });
        m_talk = std::thread([this] {
            while (!m_enough) {
                TagIPCMessageItem item;
                item.destId = kPage;
                item.msgId = kList;
                item.headerWord1 = m_posted;
                EXPECT_TRUE(m_service.PostIPCMessage(item));
                ++m_posted;
                EXPECT_TRUE(WaitUntil([this] { return m_next == m_posted; }));
            }
        });
    }

    ~HostilePeerTest() override {
        const int posted = m_posted;
        EXPECT_TRUE(WaitUntil([&] { return m_posted > posted; }));  // it still goes on
        m_enough = true;
        m_talk.join();
        EXPECT_TRUE(m_orderKept);
        EXPECT_EQ(CountLogged("connection lost"), 0);
    }

private:
    IPCBroker m_broker;
    IPCMessageClient m_page, m_service;
    std::atomic<int> m_next{0}, m_posted{0};
    std::atomic<bool> m_orderKept{true}, m_enough{false};
    std::thread m_talk;
};

TEST_F(HostilePeerTest, AWrongStreamClosesItsConnectionWithALineThatSaysWhatWasWrong) {
    std::string laterVersion;
    ipc_client::AppendHello(laterVersion, 9);
    const struct {
        const char* name;
        std::string bytes;
        const char* reason;
    } cases[] = {
        {"no handshake", "GET / HTTP/1.1\r\n\r\n", "the handshake does not begin with the magic bytes"},
        {"another version", laterVersion, "the other side speaks protocol version 9, this one 2"},
        {"an unknown type", Hello() + "\x00\x00\x00\x00\x0E"s, "unknown frame type 14"},
        {"an oversized frame", Hello() + "\xFF\xFF\xFF\xFF\x01"s, "a frame of 4294967295 bytes is over the limit"},
        {"a short message", Hello() + "\x03\x00\x00\x00\x01xyz"s, "a message frame of 3 bytes is too short"},
        {"half a route", Hello() + "\x04\x00\x00\x00\x02xxxx"s, "a list of routes of 4 bytes"},
        {"a broker's frame", Hello() + "\x00\x00\x00\x00\x05"s, "a client sends no frames of type 5"},
        {"lengths that do not fit", Hello() + "\x25\x00\x00\x00\x01"s + std::string(29, '\0') + "\x05\0\0\0\0\0\0\0"s,
         "announces 5 bytes of text and payload, its frame holds 0"},
    };
    for (const auto& wrong : cases) {
        SCOPED_TRACE(wrong.name);
        RawPeer peer(SocketPath());
        peer.Write(wrong.bytes);
        EXPECT_TRUE(peer.IsClosedByPeer());
        EXPECT_TRUE(Logged(wrong.reason));
    }
}

TEST_F(HostilePeerTest, AFrameCutAtAnyLengthByItsSendersEndIsNoMessage) {
    Inbox inbox;
    IPCMessageClient client(kPage, true, false, kPipe);
    client.RegisterMessageCallback(kFlood, inbox.Callback());
    std::string data = "payload", frame;
    TagIPCMessageItem item;
    item.destId = kPage;
    item.msgId = kFlood;
    item.data = data.data();
    item.dataLen = static_cast<std::int32_t>(data.size());
    ipc_client::AppendMessage(frame, item);
    for (std::size_t length = 0; length < frame.size(); ++length) {
        RawPeer peer(SocketPath());
        ASSERT_TRUE(peer.Write(Hello() + frame.substr(0, length)));
    }
    const auto allGone = [&] { return CountLogged(") closed: ") == static_cast<int>(frame.size()); };
    EXPECT_TRUE(WaitUntil(allGone));
    Post(client, kPage, kFlood, "whole");
    EXPECT_EQ(inbox.WaitForData(1), std::vector<std::string>{"whole"});
}

TEST_F(HostilePeerTest, RandomStreamsEndInAClosedConnection) {
    std::mt19937 random(4711);
    for (int round = 0; round < 50; ++round) {
        std::string bytes(2000, '\0');
        for (char& byte : bytes) byte = static_cast<char>(random());
        RawPeer peer(SocketPath());
        peer.Write((round % 2 == 0 ? Hello() : "") + bytes);
        EXPECT_TRUE(peer.IsClosedByPeer()) << round;
    }
}

TEST_F(HostilePeerTest, APeerThatSaysNothingIsClosed) {
    RawPeer peer(SocketPath());
    EXPECT_TRUE(peer.IsClosedByPeer());
    EXPECT_TRUE(Logged("no handshake came in time"));
}

class HostileBrokerTest : public PipeTest {};

TEST_F(HostileBrokerTest, AClientLeavesABrokerThatIsWrongSaysWhyAndGoesToTheNext) {
    std::string laterVersion;
    ipc_client::AppendHello(laterVersion, 3);
    const struct {
        std::string answer;
        const char* reason;
    } cases[] = {
        {laterVersion, "the other side speaks protocol version 3, this one 2"},
        {"HTTP/1.1 400 Bad Request", "the handshake does not begin with the magic bytes"},
        {Hello() + "\x00\x00\x00\x00\x0E"s, "unknown frame type 14"},
        {Hello() + "\x08\x00\x00\x00\x02"s + std::string(8, '\0'), "a broker sends no frames of type 2"},
        {Hello() + "\x06\x00\x00\x00\x07\x03\x00\x00\x00no"s, "the broker refuses it: no"},
    };
    for (const auto& wrong : cases) {
        SCOPED_TRACE(wrong.reason);
        Inbox inbox;
        IPCMessageClient client(kPage, true, false, kPipe);
        client.RegisterMessageCallback(kList, inbox.Callback());
        {
            const RawBroker broker(SocketPath(), wrong.answer);
            EXPECT_TRUE(Logged(wrong.reason));
        }
        IPCBroker broker(kPipe);
        broker.Start();
        EXPECT_TRUE(Post(client, kPage, kList, "to the next"));
        EXPECT_EQ(inbox.WaitForData(1), std::vector<std::string>{"to the next"});
    }
}

}  // namespace
}  // namespace ipc_test
