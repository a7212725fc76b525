// The broker's socket: its file, its rights, its length.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "base/text.h"
#include "ipc/foreign_peer.h"
#include "ipc/linux/another_user.h"
#include "ipc/message_frame.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "ipc_client/ipc_message_client.h"
#include "test_process.h"

namespace ipc_test {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

class BrokerSocket : public PipeTest {};

TEST_F(BrokerSocket, StartAndStopMayBeCalledAgain) {
    IPCBroker broker(kPipe);
    broker.Stop();
    for (int round = 0; round < 3; ++round) {
        broker.Start();
        broker.Start();
        EXPECT_TRUE(std::filesystem::exists(SocketPath()));
        broker.Stop();
        broker.Stop();
        EXPECT_FALSE(std::filesystem::exists(SocketPath()));
    }
}

TEST_F(BrokerSocket, TheSocketOfAKilledBrokerIsReplaced) {
    test_process::Process killed(BROKER_PROGRAM, {base::Utf8FromWide(kPipe)});
    ASSERT_TRUE(killed.Output().WaitFor("serving"));
    EXPECT_THROW(IPCBroker(kPipe).Start(), std::runtime_error);
    killed.Kill();
    ASSERT_EQ(killed.WaitForEnd(), -SIGKILL);
    EXPECT_TRUE(std::filesystem::exists(SocketPath()));
    IPCBroker broker(kPipe);
    EXPECT_NO_THROW(broker.Start());
    RawPeer peer(SocketPath());
    EXPECT_EQ(peer.Read(8), Hello());
}

TEST_F(BrokerSocket, ALiveBrokerKeepsItsNameWhenItsLockIsRemoved) {
    IPCBroker first(kPipe);
    first.Start();
    ASSERT_TRUE(std::filesystem::remove(SocketPath().string() + ".lock"));
    EXPECT_THAT([&] { IPCBroker(kPipe).Start(); }, ThrowsMessage<std::runtime_error>(HasSubstr("taken")));
    RawPeer peer(SocketPath());
    EXPECT_EQ(peer.Read(8), Hello());
}

TEST_F(BrokerSocket, ABrokerLeavesTheSocketOfAnother) {
    IPCBroker first(kPipe), second(kPipe);
    first.Start();
    std::filesystem::remove(SocketPath());
    std::filesystem::remove(SocketPath().string() + ".lock");
    second.Start();
    first.Stop();
    RawPeer peer(SocketPath());
    EXPECT_EQ(peer.Read(8), Hello());
}

// What a program has open that was started by a library, without a thought of this one.
std::string OpenInAChild() {
    FILE* const child = popen("for file in /proc/self/fd/*; do readlink $file; done | grep -c socket", "r");
    char line[32] = "";
    const bool isRead = std::fgets(line, sizeof line, child) != nullptr;
    pclose(child);
    return isRead ? line : "nothing";
}

TEST_F(BrokerSocket, ChildrenInheritNoConnection) {
    const std::string before = OpenInAChild();
    IPCBroker broker(kPipe);
    broker.Start();
    Inbox inbox;
    IPCMessageClient client(1, true, false, kPipe);
    client.RegisterMessageCallback(1, inbox.Callback());
    RawPeer peer(SocketPath());
    EXPECT_EQ(peer.Read(8), Hello());
    Post(client, 1, 1, "both ends are open");
    ASSERT_EQ(inbox.WaitFor(1).size(), 1u);
    EXPECT_EQ(OpenInAChild(), before);
}

// It is not read, as it owes too much to itself, so its end is found by writing.
TEST_F(BrokerSocket, APeerThatGoesWithoutHavingReadWhatItSentItselfIsNotKept) {
    IPCBrokerLimits limits;
    limits.senderBytes = 64 * 1024;
    IPCBroker broker(kPipe, limits);
    broker.Start();
    ForeignPeer peer(SocketPath());
    ASSERT_TRUE(peer.Write(Hello() + AnnouncementFrame({{1, 1}})));
    ASSERT_TRUE(peer.Write(MessageFrame(std::string(64 * 1024, 'o'), {1, 1}), 6));  // more than a socket takes
    peer.Kill();
    EXPECT_TRUE(Logged("(process " + std::to_string(peer.Process()) + ") closed: "));
}

TEST_F(BrokerSocket, TheSocketIsForThisUserOnly) {
    IPCBroker broker(kPipe);
    broker.Start();
    struct stat info;
    ASSERT_EQ(stat(SocketPath().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

class PeersOfAnotherUser : public BrokerSocket {
protected:
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
    }

    static void AsAnotherUser(const std::function<void()>& action) { AsUser(12345, action); }
};

TEST_F(PeersOfAnotherUser, AreRefusedByTheBrokerAlsoWhereTheSocketLetsThemIn) {
    IPCBroker broker(kPipe);
    broker.Start();
    chmod(Folder().c_str(), 0755);
    chmod(SocketPath().c_str(), 0666);
    AsAnotherUser([&] {
        RawPeer peer(SocketPath());
        EXPECT_EQ(peer.Read(1), "");
    });
    EXPECT_TRUE(Logged("broker: a connection was not accepted: "));
    RawPeer peer(SocketPath());
    EXPECT_EQ(peer.Read(8), Hello());
}

TEST_F(PeersOfAnotherUser, AreNoBrokersForAClient) {
    chmod(Folder().c_str(), 0777);
    std::optional<RawBroker> broker;
    AsAnotherUser([&] { broker.emplace(SocketPath(), Hello()); });
    chmod(Folder().c_str(), 0700);
    IPCMessageClient client(1, true, false, kPipe);
    EXPECT_TRUE(Logged("the broker belongs to another user"));
    EXPECT_FALSE(IsPipeConnected(kPipe));
}

TEST_F(BrokerSocket, AFolderOpenToOthersIsRefused) {
    chmod(Folder().c_str(), 0755);
    IPCBroker broker(kPipe);
    EXPECT_THAT([&] { broker.Start(); }, ThrowsMessage<std::runtime_error>(HasSubstr("open to other users")));
}

TEST_F(BrokerSocket, AFolderOpenToOthersHasNoBrokerForAClient) {
    const RawBroker broker(SocketPath(), Hello());
    chmod(Folder().c_str(), 0755);
    IPCMessageClient client(1, true, false, kPipe);
    EXPECT_TRUE(Logged("open to other users"));
    EXPECT_FALSE(IsPipeConnected(kPipe));
}

TEST_F(BrokerSocket, APathThatIsTooLongIsRefusedWithItsLength) {
    IPCBroker broker(std::wstring(120, L'p'));
    EXPECT_THAT([&] { broker.Start(); },
                ThrowsMessage<std::runtime_error>(HasSubstr("a socket path may have 107 bytes")));
}

TEST_F(BrokerSocket, APipePathThatIsTooLongForASocketIsNamedInTheLog) {
    IPCMessageClient client(1, true, false, std::wstring(120, L'p'));
    EXPECT_TRUE(Logged("a socket path may have 107 bytes"));
}

}  // namespace
}  // namespace ipc_test
