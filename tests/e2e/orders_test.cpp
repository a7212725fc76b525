// Service and host go and come back in every order, at every stage of an update: no page is left blank, stale or stuck.

#include <signal.h>

#include <tuple>

#include "page_e2e_test.h"

namespace e2e {
namespace {

// How far an update is when somebody goes.
enum class Stage { kBeforeReady, kListed, kStarted, kDownloading, kPaused, kInstalling, kEnded };

// Who goes and comes back, and how.
enum class Goes {
    kServiceKilled,
    kServiceEnded,
    kHostKilled,
    kHostEnded,
    kPageLeft,
    kBothKilledServiceBackFirst,
    kBothKilledHostBackFirst
};

constexpr const char* kStages[] = {"BeforeReady", "Listed", "Started", "Downloading", "Paused", "Installing", "Ended"};
constexpr const char* kGoing[] = {
    "ServiceKilled",          "ServiceEnded", "HostKilled", "HostEnded", "PageLeft", "BothKilledServiceBackFirst",
    "BothKilledHostBackFirst"};

const std::string kRows = WaitForRows(1, "pen");
const std::string kEnds =
    "wait text penprogress \"Up to date\" within 60\nwait nothing-left\nwait running 0\nwait shown upToDateView";
const std::string kPaused = "wait text penprogress \"Resume\"\nwait running 0";

class OrdersTest : public PageE2ETest, public testing::WithParamInterface<std::tuple<Stage, Goes>> {
protected:
    // The installer waits for Install.
    OrdersTest() { AddAccessory("pen", kSize, "while [ ! -e gate ]; do sleep 0.01; done"); }
    ~OrdersTest() override { Install(); }  // one that nobody waits for any more ends, too
    void Install() const { WriteFile(m_folder / "gate", ""); }

    [[nodiscard]] bool ComeTo(Stage stage) {
        StartService({"--rate", stage == Stage::kInstalling || stage == Stage::kEnded ? "0" : kRate});
        m_host = StartHost();
        if (stage == Stage::kBeforeReady) return true;
        if (!m_host->Play(kRows)) return false;
        if (stage == Stage::kListed) return true;
        if (stage == Stage::kEnded) Install();
        if (!m_host->Play("click penupdateBtn") || !ServiceLogs("pen: started")) return false;
        switch (stage) {
            case Stage::kDownloading:
                return m_host->Play("wait percent penprogress 5");
            case Stage::kPaused:
                return m_host->Play("wait percent penprogress 5\nclick penstopBtn\n" + kPaused);
            case Stage::kInstalling:
                return m_host->Play("wait text penprogress Installing…");
            case Stage::kEnded:
                return m_host->Play(kEnds);
            default:
                return true;
        }
    }

    void KillHost() {
        m_host->Program().Kill();
        EXPECT_EQ(m_host->Program().WaitForEnd(), -SIGKILL);
    }

    void EndService(Stage stage) {
        m_service->AskToEnd();
        if (stage == Stage::kInstalling) Install();  // the service waits for that
        const std::optional<int> end = m_service->WaitForEnd();
        const bool beforeItListened = stage == Stage::kBeforeReady && end == -SIGTERM;
        EXPECT_TRUE(end == 0 || beforeItListened) << ServiceLog();
    }

    void GoAndComeBack(Stage stage, Goes who) {
        switch (who) {
            case Goes::kServiceKilled:
                KillService();
                return StartService();
            case Goes::kServiceEnded:
                EndService(stage);
                return StartService();
            case Goes::kHostKilled:
                KillHost();
                m_host = StartHost();
                return;
            case Goes::kHostEnded:
                m_host->End();
                m_host = StartHost();
                return;
            case Goes::kPageLeft:
                ASSERT_TRUE(m_host->Play("close\nopen"));
                return;
            case Goes::kBothKilledServiceBackFirst:
            case Goes::kBothKilledHostBackFirst:
                KillService();
                KillHost();
                if (who == Goes::kBothKilledHostBackFirst) m_host = StartHost();
                StartService();
                if (who == Goes::kBothKilledServiceBackFirst) m_host = StartHost();
                return;
        }
    }

    // A page that was there all the time goes on by itself.
    void GoOn(Stage stage) {
        if (stage == Stage::kEnded) {
            ASSERT_TRUE(m_host->Play("wait connected\nwait nothing-left\nwait running 0\nwait shown upToDateView"));
            return;
        }
        std::string first;
        if (stage == Stage::kBeforeReady || stage == Stage::kListed) first = kRows + "click penupdateBtn";
        if (stage == Stage::kPaused) first = "wait connected\n" + kPaused + "\nclick penstopBtn";
        ASSERT_TRUE(m_host->Play(first));
        Install();
        ASSERT_TRUE(m_host->Play(kEnds));
    }

    // A page that is new shows what is left, and a click follows what runs or begins anew.
    void BeginAgain(Stage stage) {
        if (stage == Stage::kEnded) {
            ASSERT_TRUE(m_host->Play("wait shown upToDateView within 30\nwait running 0"));
            return;
        }
        ASSERT_TRUE(m_host->Play(kRows + "click penupdateBtn"));
        Install();
        ASSERT_TRUE(m_host->Play(kEnds));
    }

    static inline const std::string kRate = "200000";  // [bytes/s] a second for the whole
    std::unique_ptr<Host> m_host;
};

TEST_P(OrdersTest, ThePageShowsTheUpdateAndBringsItToItsEnd) {
    const auto [stage, who] = GetParam();
    ASSERT_TRUE(ComeTo(stage)) << ServiceLog();
    ASSERT_NO_FATAL_FAILURE(GoAndComeBack(stage, who));
    const bool staysOpen = who == Goes::kServiceKilled || who == Goes::kServiceEnded;
    ASSERT_NO_FATAL_FAILURE(staysOpen ? GoOn(stage) : BeginAgain(stage)) << ServiceLog();
    EXPECT_EQ(ReadFile(Arrived("pen")), PackageContent("pen"));
    m_host->End();
}

std::string NameOf(const testing::TestParamInfo<OrdersTest::ParamType>& row) {
    const auto [stage, who] = row.param;
    return std::string(kGoing[static_cast<int>(who)]) + "When" + kStages[static_cast<int>(stage)];
}

INSTANTIATE_TEST_SUITE_P(
    All, OrdersTest,
    testing::Combine(testing::Values(Stage::kBeforeReady, Stage::kListed, Stage::kStarted, Stage::kDownloading,
                                     Stage::kPaused, Stage::kInstalling, Stage::kEnded),
                     testing::Values(Goes::kServiceKilled, Goes::kServiceEnded, Goes::kHostKilled, Goes::kHostEnded,
                                     Goes::kPageLeft, Goes::kBothKilledServiceBackFirst,
                                     Goes::kBothKilledHostBackFirst)),
    NameOf);

using StartStopTest = PageE2ETest;

TEST_F(StartStopTest, WhoeverComesOrGoesFirstBothEndWell) {
    AddAccessory("pen");
    for (const bool serviceComesFirst : {true, false}) {
        for (const bool serviceGoesFirst : {true, false}) {
            SCOPED_TRACE(std::string(serviceComesFirst ? "service" : "host") + " comes first, " +
                         (serviceGoesFirst ? "service" : "host") + " goes first");
            std::unique_ptr<Host> host;
            if (!serviceComesFirst) host = StartHost();
            StartService();
            if (serviceComesFirst) host = StartHost();
            ASSERT_TRUE(host->Play(kRows));
            if (serviceGoesFirst) {
                StopService();
                ASSERT_TRUE(host->Play("wait disconnected"));
            }
            host->End();
            if (!serviceGoesFirst) StopService();
        }
    }
}

}  // namespace
}  // namespace e2e
