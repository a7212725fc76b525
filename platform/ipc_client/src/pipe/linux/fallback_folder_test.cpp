// A channel whose folder in /tmp another user of the machine has made first.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "base/process.h"
#include "ipc/linux/another_user.h"
#include "ipc/pipe_test.h"
#include "ipc_client/ipc_broker.h"
#include "ipc_client/ipc_diagnostics.h"
#include "ipc_client/ipc_message_client.h"

namespace ipc_test {
namespace {

class FolderOfAStranger : public PipeTest {
protected:
    FolderOfAStranger() : m_runtimeFolder(base::Variable("XDG_RUNTIME_DIR")) {
        base::SetVariable("BRINDLE_PIPE_DIR", std::nullopt);
        base::SetVariable("XDG_RUNTIME_DIR", std::nullopt);
    }
    ~FolderOfAStranger() override { base::SetVariable("XDG_RUNTIME_DIR", m_runtimeFolder); }

    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
        m_user.StrangerDoes([&] {
            ASSERT_EQ(mkdir(m_user.Folder().c_str(), 0777), 0);
            chmod(m_user.Folder().c_str(), 0777);
        });
    }

    // As the user.
    static bool CanTalk() {
        Inbox inbox;
        IPCMessageClient client(1, true, false, kPipe);
        client.RegisterMessageCallback(1, inbox.Callback());
        return Post(client, 1, 1, "a") && inbox.WaitForData(1) == std::vector<std::string>{"a"};
    }

    const UserWithoutAFolder m_user;

private:
    const std::optional<std::string> m_runtimeFolder;
};

TEST_F(FolderOfAStranger, IsNotInTheWayOfTheChannel) {
    m_user.Do([&] {
        IPCBroker broker(kPipe);
        broker.Start();
        EXPECT_TRUE(CanTalk());
    });
    EXPECT_TRUE(std::filesystem::is_empty(m_user.Folder()));
}

TEST_F(FolderOfAStranger, MayGoWhileTheBrokerLives) {
    m_user.Do([&] {
        IPCBroker broker(kPipe);
        broker.Start();
        m_user.StrangerDoes([&] { ASSERT_EQ(rmdir(m_user.Folder().c_str()), 0); });
        EXPECT_TRUE(CanTalk());
        EXPECT_THROW(IPCBroker(kPipe).Start(), std::runtime_error);
    });
}

TEST_F(FolderOfAStranger, AClientThatWasThereFirstFindsTheBroker) {
    m_user.Do([&] {
        IPCMessageClient client(1, true, false, kPipe);
        EXPECT_TRUE(Logged("belongs to another user"));
        IPCBroker broker(kPipe);
        broker.Start();
        EXPECT_TRUE(WaitUntil([&] { return IsPipeConnected(kPipe); }));
    });
}

// A link of the stranger's, say, to a socket of this user's that is for something else.
TEST_F(FolderOfAStranger, LeadsNoClientToASocketOfItsOwnUser) {
    m_user.Do([&] {
        const RawBroker broker(m_user.Folder() / "Test.sock", Hello());
        IPCMessageClient client(1, true, false, kPipe);
        EXPECT_TRUE(Logged("belongs to another user"));
        EXPECT_FALSE(IsPipeConnected(kPipe));
    });
}

TEST_F(FolderOfAStranger, OfBrokersThatStartAtOnceOneHasTheName) {
    constexpr int kBrokers = 8;
    m_user.Do([&] {
        for (int round = 0; round < 10; ++round) {
            std::vector<std::unique_ptr<IPCBroker>> brokers(kBrokers);
            std::vector<std::thread> threads;
            std::atomic<int> started{0}, refused{0};
            for (auto& broker : brokers) {
                broker = std::make_unique<IPCBroker>(kPipe);
                threads.emplace_back([&] {
                    try {
                        broker->Start();
                        ++started;
                    } catch (const std::runtime_error&) {
                        ++refused;
                    }
                });
            }
            for (std::thread& thread : threads) thread.join();
            EXPECT_EQ(started, 1);
            EXPECT_EQ(refused, kBrokers - 1);
            EXPECT_TRUE(CanTalk());
            brokers.clear();
            for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
                if (entry.path().string().starts_with(m_user.Folder().string() + "-")) {
                    std::filesystem::remove_all(entry.path());
                }
            }
        }
    });
}

}  // namespace
}  // namespace ipc_test
