#include "diagnostics.h"

#include <gmock/gmock.h>

#include "ipc/pipe_test.h"

namespace ipc_client {
namespace {

class PeerLogTest : public ipc_test::PipeTest {
protected:
    void Write(unsigned long process, int count) {
        for (int i = 0; i < count; ++i) {
            m_log->Write(kIpcLogEvent, process, [&] { return "a line about " + std::to_string(process); });
        }
    }

    static constexpr unsigned long kOwn = 1000;
    std::optional<PeerLog> m_log{std::in_place, kOwn, base::LineBudget::Limits{.lines = 10, .subjects = 2}};
};

TEST_F(PeerLogTest, AProcessThatCausesMoreLinesThanItHasDrownsNobodys) {
    Write(7, 100);
    Write(8, 1);
    EXPECT_EQ(CountLogged("a line about 7"), 10);
    EXPECT_EQ(CountLogged("a line about 8"), 1);
    m_log.reset();
    EXPECT_EQ(CountLogged("broker: 90 lines about process 7 were left out"), 1);
    EXPECT_EQ(CountLogged("were left out"), 1);
}

TEST_F(PeerLogTest, ProcessesBeyondCountingAreToldTogether) {
    for (unsigned long process = 1; process <= 22; ++process) Write(process, 1);
    EXPECT_EQ(CountLogged("a line about"), 12);
    m_log.reset();
    EXPECT_EQ(CountLogged("broker: 10 lines about many other processes were left out"), 1);
}

TEST_F(PeerLogTest, AllLinesAboutTheBrokersOwnProcessAreWritten) {
    Write(kOwn, 100);
    EXPECT_EQ(CountLogged("a line about"), 100);
}

TEST_F(PeerLogTest, ALineForWhichThereIsNoMemoryIsDropped) {
    m_log->Write(kIpcLogEvent, 7, []() -> std::string { throw std::bad_alloc(); });
    Write(7, 1);
    EXPECT_EQ(CountLogged("a line about 7"), 1);
}

}  // namespace
}  // namespace ipc_client
