#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <thread>

#include "installer.h"
#include "test_folder.h"

namespace update_service {
namespace {

using test_support::ReadFile;
using test_support::TestFolder;
using test_support::WriteFile;

using std::chrono::milliseconds;

class Installer : public testing::Test {
protected:
    InstallerResult Run(std::vector<std::string> command) {
        return RunInstaller({std::move(command), m_folder.Path(), {{"ACCESSORY_KEY", "pen"}}}, m_stop.get_token(),
                            milliseconds(0));
    }
    InstallerResult RunShell(const std::string& text) { return Run({"/bin/sh", "-c", text, "installer", "PACKAGE"}); }

    TestFolder m_folder;
    std::stop_source m_stop;
};

TEST_F(Installer, ExitStatusZeroIsSuccess) { EXPECT_EQ(RunShell("exit 0").end, InstallerEnd::kSucceeded); }

TEST_F(Installer, AnotherExitStatusOrASignalIsAFailureThatSaysWhich) {
    const InstallerResult status = RunShell("exit 3");
    EXPECT_EQ(status.end, InstallerEnd::kFailed);
    EXPECT_EQ(status.reason, "exit status 3");
    const InstallerResult signalled = RunShell("kill -9 $$");
    EXPECT_EQ(signalled.end, InstallerEnd::kFailed);
    EXPECT_EQ(signalled.reason, "signal 9");
}

TEST_F(Installer, AProgramThatIsNotThereIsAFailure) {
    const InstallerResult result = Run({"./missing"});
    EXPECT_EQ(result.end, InstallerEnd::kFailed);
    EXPECT_EQ(result.reason, "cannot be started: No such file or directory");
}

TEST_F(Installer, RunsInItsFolderWithItsArgumentsAndVariables) {
    setenv("ACCESSORY_KEY", "of the service", 1);
    setenv("INHERITED", "yes", 1);
    WriteFile(m_folder / "install.sh", "#!/bin/sh\necho \"$1 $2 $ACCESSORY_KEY $INHERITED\" > result\n");
    std::filesystem::permissions(m_folder / "install.sh", std::filesystem::perms::owner_all);
    EXPECT_EQ(Run({"./install.sh", "one", "two words"}).end, InstallerEnd::kSucceeded);
    EXPECT_EQ(ReadFile(m_folder / "result"), "one two words pen yes\n");
}

TEST_F(Installer, StartsWithNoSignalHeldBackAndNoInput) {
    sigset_t held, before;
    sigemptyset(&held);
    sigaddset(&held, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &held, &before);
    const InstallerResult result = RunShell("read line && exit 1; kill -TERM $$; exit 2");
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(result.reason, "signal 15");
}

TEST_F(Installer, OneThatDoesNotEndIsAbandonedWhenTheServiceStops) {
    const std::filesystem::path pipe = m_folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::jthread stopper([&] {
        while (!std::filesystem::exists(m_folder / "started")) std::this_thread::yield();
        m_stop.request_stop();
    });
    EXPECT_EQ(RunShell("touch started; read line < pipe; exec touch done").end, InstallerEnd::kAbandoned);
    std::ofstream(pipe) << "go on\n";  // it has not been ended
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!std::filesystem::exists(m_folder / "done") && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_TRUE(std::filesystem::exists(m_folder / "done"));
}

TEST_F(Installer, OneThatEndsWithinTheGraceCountsAsEver) {
    m_stop.request_stop();
    const InstallerResult result =
        RunInstaller({{"/bin/sh", "-c", "exit 4"}, m_folder.Path(), {}}, m_stop.get_token(), milliseconds(10000));
    EXPECT_EQ(result.reason, "exit status 4");
}

}  // namespace
}  // namespace update_service
