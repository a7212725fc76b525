// Clients whose callbacks do not catch up.

#include <gmock/gmock.h>

#include <string>

#include "ipc/message_frame.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_message_client.h"
#include "kernel/ui_turn.h"

namespace ipc_test {
namespace {

using ::testing::ElementsAre;

constexpr int kPage = 0x270000, kFirst = 1, kSecond = 2;
constexpr std::size_t kLarge = 15 * 1024 * 1024;  // [bytes] four of them may wait for callbacks, five may not

struct StartedBroker {
    StartedBroker() { broker.Start(); }
    IPCBroker broker{kPipe};
};

class FullClientTest : public PipeTest {
protected:
    FullClientTest() { m_sender.Write(Hello()); }

    bool Send(std::string data) { return m_sender.Write(MessageFrame(std::move(data), {kPage, kFirst})); }

    const StartedBroker m_broker;
    Inbox m_inbox;
    IPCMessageClient m_client{kPage, true, false, kPipe};
    RawPeer m_sender{SocketPath()};  // which keeps nothing of what it sends
};

TEST_F(FullClientTest, BeyondTheBytesThatMayWaitForCallbacksTheRestWaitsInThePipe) {
    const std::string expected = "abcdefgh";
    m_client.RegisterMessageCallback(kFirst, m_inbox.Callback());
    {
        const kernel::UiTurn turn;
        for (const char letter : expected) {
            const std::string data(kLarge, letter);
            ASSERT_TRUE(Send(data));
        }
    }
    std::string letters;
    for (const Received& received : m_inbox.WaitFor(expected.size())) letters += received.data.at(0);
    EXPECT_EQ(letters, expected);
}

TEST_F(FullClientTest, AFullClientThatGoesLetsTheOthersGoOn) {
    m_client.RegisterMessageCallback(kSecond, m_inbox.Callback());
    {
        IPCMessageClient full(kPage, true, false, kPipe);
        full.RegisterMessageCallback(kFirst, [](TagIPCMessageItem&) {});
        const kernel::UiTurn turn;
        for (int i = 0; i < 8; ++i) {
            ASSERT_TRUE(Send(std::string(kLarge, 'x')));
        }
        full.UnRegisterMessageCallbackAll();
    }
    Post(m_client, kPage, kSecond, "delivered");
    EXPECT_THAT(m_inbox.WaitForData(1), ElementsAre("delivered"));
}

}  // namespace
}  // namespace ipc_test
