// The broker's pipe: its name, its rights, its instances.

#include <gmock/gmock.h>
#include <windows.h>
// The security header needs the one before it.
#include <aclapi.h>

#include <memory>

#include "base/handle.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_message_client.h"
#include "wire/frame.h"

namespace ipc_test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

// With the identifier behind it, to which it points.
struct OwnUserBytes {
    alignas(TOKEN_USER) char bytes[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
};

void ReadOwnUser(OwnUserBytes& user) {
    HANDLE opened = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened));
    const base::OwnedHandle token(opened);
    DWORD size = 0;
    ASSERT_TRUE(GetTokenInformation(token.Handle(), TokenUser, user.bytes, sizeof user.bytes, &size));
}

class BrokerPipe : public PipeTest {
protected:
    bool Exists() const { return WaitNamedPipeW(SocketPath().c_str(), 1) || GetLastError() != ERROR_FILE_NOT_FOUND; }
};

TEST_F(BrokerPipe, StartAndStopMayBeCalledAgain) {
    IPCBroker broker(kPipe);
    broker.Stop();
    for (int round = 0; round < 3; ++round) {
        broker.Start();
        broker.Start();
        EXPECT_TRUE(Exists());
        broker.Stop();
        broker.Stop();
        EXPECT_FALSE(Exists());
    }
}

TEST_F(BrokerPipe, ANameThatSomebodyElseHasIsRefused) {
    const base::OwnedHandle foreign(
        CreateNamedPipeW(SocketPath().c_str(), PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, 5, 0, 0, 0, nullptr));
    ASSERT_TRUE(foreign);
    IPCBroker broker(kPipe);
    EXPECT_THAT([&] { broker.Start(); },
                ThrowsMessage<std::runtime_error>(AllOf(HasSubstr(SocketPath().string()), HasSubstr("taken"))));
}

TEST_F(BrokerPipe, MorePeersThanListenAtOnceAreAllTaken) {
    IPCBroker broker(kPipe);
    broker.Start();
    std::vector<std::unique_ptr<RawPeer>> peers;
    for (int i = 0; i < 40; ++i) peers.push_back(std::make_unique<RawPeer>(SocketPath()));
    for (const auto& peer : peers) EXPECT_EQ(peer->Read(8), Hello());
}

TEST_F(BrokerPipe, ThePipeIsForThisUserOnly) {
    IPCBroker broker(kPipe);
    broker.Start();
    const base::OwnedHandle pipe(
        CreateFileW(SocketPath().c_str(), READ_CONTROL | GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(pipe);
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetSecurityInfo(pipe.Handle(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list,
                              nullptr, &descriptor),
              static_cast<DWORD>(ERROR_SUCCESS));
    ASSERT_NE(list, nullptr) << "everybody may do everything";
    ASSERT_EQ(list->AceCount, 1);
    void* entry = nullptr;
    ASSERT_TRUE(GetAce(list, 0, &entry));
    EXPECT_EQ(static_cast<ACE_HEADER*>(entry)->AceType, ACCESS_ALLOWED_ACE_TYPE);
    OwnUserBytes user{};
    ASSERT_NO_FATAL_FAILURE(ReadOwnUser(user));
    EXPECT_TRUE(EqualSid(&static_cast<ACCESS_ALLOWED_ACE*>(entry)->SidStart,
                         reinterpret_cast<TOKEN_USER*>(user.bytes)->User.Sid));
    LocalFree(descriptor);
}

TEST_F(BrokerPipe, ANameThatIsTooLongIsRefusedWithItsLength) {
    IPCBroker broker(std::wstring(300, L'p'));
    EXPECT_THAT([&] { broker.Start(); },
                ThrowsMessage<std::runtime_error>(HasSubstr("a pipe's name may have 256 characters")));
    IPCMessageClient client(1, true, false, std::wstring(300, L'p'));
    EXPECT_TRUE(Logged("a pipe's name may have 256 characters"));
}

}  // namespace
}  // namespace ipc_test
