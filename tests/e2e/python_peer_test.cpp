// The peer in another language (docs/examples/python_peer), written from docs/protocol.md only: what it prints of the
// built service.

#include <cstdio>

#include "ipc/pipe_test.h"
#include "page_e2e_test.h"

namespace e2e {
namespace {

int PercentOf(const std::string& line) {
    int percent = -1;
    EXPECT_EQ(std::sscanf(line.c_str(), "pen: %d %%", &percent), 1) << line;
    return percent;
}

class PythonPeerTest : public PageE2ETest {
protected:
    std::unique_ptr<test_process::Process> Start(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), PROJECT_FOLDER "/docs/examples/python_peer/accessory_peer.py");
        auto environment = Environment();
        environment["PYTHONIOENCODING"] = "utf-8";
        return std::make_unique<test_process::Process>(PYTHON_PROGRAM, arguments, environment);
    }

    // Returns once it has ended with that exit code.
    std::unique_ptr<test_process::Process> Run(std::vector<std::string> arguments, int expected) const {
        auto peer = Start(std::move(arguments));
        EXPECT_EQ(peer->WaitForEnd(), expected) << peer->Output().Text() << peer->Errors().Text();
        return peer;
    }
};

TEST_F(PythonPeerTest, PrintsTheList) {
    for (const char* key : {"pen", "t\xC3\xBCr"}) AddAccessory(key);
    StartService();
    ASSERT_TRUE(ServiceLogs("ready"));
    EXPECT_EQ(Run({"list"}, 0)->Output().Text(),
              "pen: IDS_NAME_PEN, firmware 2.0\n    Steadier.\n    Lighter.\n"
              "t\xC3\xBCr: IDS_NAME_PEN, firmware 2.1\n    Steadier.\n    Lighter.\n");
}

TEST_F(PythonPeerTest, UpdatesAndTellsTheProgressInOrder) {
    AddAccessory("pen");
    StartService();
    ASSERT_TRUE(ServiceLogs("ready"));
    const std::vector<std::string> lines = Run({"update", "pen"}, 0)->Output().Lines();
    ASSERT_THAT(lines, testing::SizeIs(testing::Gt(10u)));
    EXPECT_EQ(lines.front(), "pen: 0 %");
    for (std::size_t i = 1; i + 2 < lines.size(); ++i) EXPECT_GT(PercentOf(lines[i]), PercentOf(lines[i - 1]));
    EXPECT_EQ(lines.end()[-2], "pen: installing");
    EXPECT_EQ(lines.back(), "pen: up to date");
    EXPECT_EQ(ReadFile(Arrived("pen")), PackageContent("pen"));
    EXPECT_EQ(Run({"list"}, 0)->Output().Text(), "everything is up to date\n");
}

TEST_F(PythonPeerTest, TellsAnUpdateThatFails) {
    AddAccessory("pen");
    StartService({"--fail", "pen:30"});
    ASSERT_TRUE(ServiceLogs("ready"));
    const auto peer = Run({"update", "pen"}, 1);
    EXPECT_EQ(PercentOf(peer->Output().Lines().back()), 30);
    EXPECT_EQ(peer->Errors().Text(), "accessory_peer: pen: the update has failed\n");
}

TEST_F(PythonPeerTest, FollowsAnUpdateFromOneServiceToTheNext) {
    AddAccessory("pen");
    StartService({"--rate", kSlowRate});
    ASSERT_TRUE(ServiceLogs("ready"));
    const auto peer = Start({"update", "pen"});
    ASSERT_TRUE(peer->Output().WaitFor("pen: 1"));
    KillService();
    StartService();
    EXPECT_EQ(peer->WaitForEnd(), 0) << peer->Errors().Text();
    EXPECT_EQ(peer->Output().Lines().back(), "pen: up to date");
}

TEST_F(PythonPeerTest, SaysThatThereIsNoService) {
    EXPECT_THAT(Run({"list"}, 1)->Errors().Text(), HasSubstr("iKorvelAssistant.sock: No such file or directory"));
}

TEST_F(PythonPeerTest, LeavesABrokerOfAnotherVersion) {
    std::string hello = ipc_test::Hello();
    hello[4] = 3;
    const ipc_test::RawBroker broker(PipeSocket(), hello);
    EXPECT_THAT(Run({"list"}, 1)->Errors().Text(),
                HasSubstr("the other side speaks another protocol: 42 50 49 50 03 00 00 00"));
}

TEST_F(PythonPeerTest, LeavesABrokerThatSendsAWrongFrame) {
    const ipc_test::RawBroker broker(PipeSocket(), ipc_test::Hello() + std::string("\x01\0\0\0\x01x", 6));
    EXPECT_THAT(Run({"list"}, 1)->Errors().Text(), HasSubstr("the broker has sent a wrong frame: type 1, 1 bytes"));
}

TEST_F(PythonPeerTest, SaysWhyABrokerRefusesIt) {
    const ipc_test::RawBroker broker(PipeSocket(),
                                     ipc_test::Hello() + std::string("\x0C\0\0\0\x07\3\0\0\0too many", 17));
    EXPECT_THAT(Run({"list"}, 1)->Errors().Text(), HasSubstr("the broker refuses this peer: too many"));
}

}  // namespace
}  // namespace e2e
