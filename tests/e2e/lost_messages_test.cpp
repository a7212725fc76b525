// What was under way when the service died: the other side of a message had not read it, or was not there for it.

#include <signal.h>

#include "page_e2e_test.h"

namespace e2e {
namespace {

const std::string kRows = WaitForRows(1, "pen");
const std::string kEnds = "wait text penprogress \"Up to date\" within 60\nwait nothing-left\nwait running 0";

class LostMessagesTest : public PageE2ETest {
protected:
    LostMessagesTest() { AddAccessory("pen"); }

    // The process reads nothing more until it goes on; what it is written waits in the system and dies with it.
    static void Freeze(const test_process::Process& process) {
        kill(process.Id(), SIGSTOP);
        const std::string file = "/proc/" + std::to_string(process.Id()) + "/stat";
        ASSERT_TRUE(WaitUntil([&] { return ReadFile(file).find(") T ") != std::string::npos; }));
    }
    static void Thaw(const test_process::Process& process) { kill(process.Id(), SIGCONT); }

    // The service dies without having read what the page says by these lines, and another one comes.
    void SayToAServiceThatDies(Host& host, const std::string& lines, const std::vector<std::string>& options = {}) {
        ASSERT_NO_FATAL_FAILURE(Freeze(*m_service));
        ASSERT_TRUE(host.Play(lines));
        KillService();
        StartService(options);
    }

    // Two hosts show an update; the second one sleeps while the service is replaced by one with these options, and
    // until the first one shows what becomes of the update. Then the second shows it, too.
    void MissTheNews(const std::vector<std::string>& options, const std::string& news) {
        StartService({"--rate", kSlowRate});
        const auto awake = StartHost();
        const auto asleep = StartHost();
        ASSERT_TRUE(asleep->Play(kRows));
        ASSERT_TRUE(awake->Play(kRows + "click penupdateBtn\nwait percent penprogress 5"));
        ASSERT_TRUE(asleep->Play("wait percent penprogress 5"));
        Freeze(asleep->Program());
        KillService();
        StartService(options);
        ASSERT_TRUE(awake->Play(news));
        Thaw(asleep->Program());
        EXPECT_TRUE(asleep->Play(news));
        awake->End();
        asleep->End();
    }
};

TEST_F(LostMessagesTest, AReadyThatWasNotReadIsAnsweredByTheNextService) {
    StartService();
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(kRows + "close"));
    ASSERT_NO_FATAL_FAILURE(SayToAServiceThatDies(*host, "open"));
    ASSERT_TRUE(host->Play(kRows + "click penupdateBtn\n" + kEnds));
    host->End();
}

TEST_F(LostMessagesTest, AStartThatWasNotReadIsCarriedOutByTheNextService) {
    StartService();
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(kRows));
    ASSERT_NO_FATAL_FAILURE(SayToAServiceThatDies(*host, "click penupdateBtn"));
    ASSERT_TRUE(host->Play(kEnds));
    host->End();
}

TEST_F(LostMessagesTest, APauseThatWasNotReadIsCarriedOutByTheNextService) {
    StartService({"--rate", kSlowRate});
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(kRows + "click penupdateBtn\nwait percent penprogress 5"));
    ASSERT_NO_FATAL_FAILURE(SayToAServiceThatDies(*host, "click penstopBtn", {"--rate", kSlowRate}));
    EXPECT_TRUE(ServiceLogs("pen: paused at ")) << ServiceLog();
    ASSERT_TRUE(host->Play("wait text penprogress \"Resume\"\nwait running 0\nclick penstopBtn\n" + kEnds));
    host->End();
}

TEST_F(LostMessagesTest, ARetryThatWasNotReadIsCarriedOutByTheNextService) {
    StartService({"--fail", "pen:30"});
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(kRows + "click penupdateBtn\nwait text penprogress \"Try again\""));
    ASSERT_NO_FATAL_FAILURE(SayToAServiceThatDies(*host, "click penstopBtn"));
    ASSERT_TRUE(host->Play(kEnds));
    host->End();
}

TEST_F(LostMessagesTest, AnEndThatAPageWasNotThereForIsShownOnceItIsBack) { MissTheNews({}, kEnds); }

TEST_F(LostMessagesTest, AFailureThatAPageWasNotThereForIsShownOnceItIsBack) {
    MissTheNews({"--fail", "pen:90"}, "wait text penprogress \"Try again\" within 60");
}

TEST_F(LostMessagesTest, APercentageThatAPageWasNotThereForIsShownOnceItIsBack) {
    MissTheNews({"--rate", kSlowRate}, "wait percent penprogress 60");
}

}  // namespace
}  // namespace e2e
