// What a connection does when its broker does not: pauses, patience, the wait at the end.

#include "client/connection.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/file.h"
#include "ipc/pipe_test.h"
#include "pipe/pipe_path.h"

namespace ipc_client {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using ::testing::ElementsAre;

std::vector<milliseconds> Next(ReconnectPauses& pauses, int count) {
    std::vector<milliseconds> next;
    for (int i = 0; i < count; ++i) next.push_back(pauses.Next());
    return next;
}

TEST(ReconnectPauses, DoubleUpToTheLongest) {
    ReconnectPauses pauses({});
    EXPECT_THAT(Next(pauses, 8), ElementsAre(20ms, 40ms, 80ms, 160ms, 320ms, 640ms, 1000ms, 1000ms));
}

TEST(ReconnectPauses, BeginAnewAfterAConnectionThatHeldForTheLongestPause) {
    ReconnectPauses pauses({});
    Next(pauses, 3);
    pauses.Lost(999ms);
    EXPECT_THAT(Next(pauses, 2), ElementsAre(160ms, 320ms));
    pauses.Lost(1000ms);
    EXPECT_THAT(Next(pauses, 2), ElementsAre(20ms, 40ms));
}

TEST(ConnectionTimes, AreThoseOfTheProtocol) {
    EXPECT_EQ(ConnectionTimes{}.handshake, 5000ms);
    EXPECT_EQ(ConnectionTimes{}.linger, 500ms);
    EXPECT_EQ(ConnectionTimes{}.silence, 5000ms);
}

class ConnectionTest : public ipc_test::PipeTest {
protected:
    // To a pipe whose broker takes connections and says nothing.
    void Connect(const ConnectionTimes& times) { m_connection.emplace(SocketPath(), times); }

    bool Post() {
        TagIPCMessageItem item;
        item.destId = 1;
        return m_connection->Post(item);
    }

    const ipc_test::RawBroker m_silent{SocketPath(), ""};
    std::optional<Connection> m_connection;
};

TEST_F(ConnectionTest, ABrokerThatDoesNotSayHelloInTimeIsLeft) {
    Connect({.handshake = 30ms});
    EXPECT_TRUE(Logged("no handshake came in time"));
    EXPECT_FALSE(m_connection->IsOpen());
}

TEST_F(ConnectionTest, TheEndWaitsForWhatWasPostedAndNoLongerThanItsTime) {
    Connect({.handshake = 1h, .linger = 50ms});
    EXPECT_TRUE(Post());
    const auto begin = steady_clock::now();
    m_connection.reset();
    EXPECT_GE(steady_clock::now() - begin, 50ms);
    EXPECT_LT(steady_clock::now() - begin, ipc_test::kPatience);
}

// The time is more than the test has.
TEST_F(ConnectionTest, TheEndDoesNotWaitWhenNothingWasPosted) {
    Connect({.linger = 1h});
    m_connection.reset();
}

// A broker that was looked for and is not there takes nothing.
TEST_F(ConnectionTest, TheEndDoesNotWaitForABrokerThatHasBeenLeft) {
    Connect({.handshake = 1ms, .linger = 1h});
    EXPECT_TRUE(Post());
    EXPECT_TRUE(Logged("no handshake came in time"));
    m_connection.reset();
}

// Brokers that introduce themselves, and then say what they say.
class SilentBroker : public ipc_test::PipeTest {
protected:
    SilentBroker() { m_times.silence = 50ms; }

    static std::string Introduced() {
        std::string bytes = ipc_test::Hello();
        Introduction broker;
        broker.life.bytes.fill(1);
        AppendIntroduction(bytes, broker);
        return bytes;
    }
    static std::string NotReading() {
        std::string bytes;
        AppendAnswer(bytes, false);
        return bytes;
    }
    // A broker of that name, which answers with these bytes as soon as it is connected, and a message to it.
    struct Conversation {
        Conversation(const std::filesystem::path& path, const std::string& answer, const ConnectionTimes& times)
            : broker(path, answer), connection(path, times) {
            EXPECT_TRUE(ipc_test::WaitUntil([&] { return connection.IsOpen(); }));
            EXPECT_TRUE(connection.Post({}));
        }
        const ipc_test::RawBroker broker;
        Connection connection;
    };

    ConnectionTimes m_times;
};

TEST_F(SilentBroker, ThatOwesSomethingAndDoesNotAnswerIsLeftUnlessItHasSaidThatItDoesNotRead) {
    const std::filesystem::path patientPath = PipePath(L"patient"), leftPath = PipePath(L"left");
    const Conversation patient(patientPath, Introduced() + NotReading(), m_times);
    const Conversation left(leftPath, Introduced(), m_times);
    EXPECT_TRUE(Logged(base::Utf8FromPath(leftPath) + ": connection lost: the broker does not answer"));
    EXPECT_TRUE(patient.connection.IsOpen()) << "which has been silent for longer";
}

}  // namespace
}  // namespace ipc_client
