#include "installer.h"

#include <gmock/gmock.h>

#include <thread>

#include "base/process.h"
#include "shell_commands.h"
#include "temporary_folder.h"
#include "wait_until.h"

#if !defined(_WIN32)
#include <signal.h>
#include <unistd.h>
#endif

namespace update_service {
namespace {

using std::chrono::milliseconds;
using test_support::ReadFile;
using test_support::Shell;
using test_support::TemporaryFolder;
using test_support::WriteFile;

// What the installers of these tests do, in the words of each system's shell.
#if defined(_WIN32)
constexpr const char* kMissing = "./missing.exe";
constexpr const char* kTellVariables = "echo %ACCESSORY_KEY% %INHERITED%>result";
constexpr const char* kComplainWithoutInput =
    "echo spoken& echo complained>&2& set line=& set /p line=& if defined line (exit 1) else (exit 2)";
constexpr const char* kWaitAndTell = "wait.cmd";  // a loop of the interpreter's own is not left everywhere
constexpr const char* kEndWhenStopped = "echo.>started& for /L %i in () do if exist gate exit 4";
#else
constexpr const char* kMissing = "./missing";
constexpr const char* kTellVariables = "echo $ACCESSORY_KEY $INHERITED >result";
constexpr const char* kComplainWithoutInput = "echo spoken; echo complained >&2; read line && exit 1; exit 2";
constexpr const char* kWaitAndTell = "touch started; while [ ! -e gate ]; do :; done; touch done";
constexpr const char* kEndWhenStopped = "touch started; while [ ! -e gate ]; do :; done; exit 4";
#endif

// Sets a variable for its lifetime, and puts back what was there.
class Variable {
public:
    Variable(std::string name, const char* value) : m_name(std::move(name)) {
        if (const char* const earlier = std::getenv(m_name.c_str())) m_earlier = earlier;
        base::SetVariable(m_name, value);
    }
    ~Variable() { base::SetVariable(m_name, m_earlier); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const std::string m_name;
    std::optional<std::string> m_earlier;
};

class Installer : public testing::Test {
protected:
    InstallerResult Run(std::vector<std::string> command, milliseconds grace = milliseconds(0)) {
        return RunInstaller({std::move(command), m_folder.Path(), {{"ACCESSORY_KEY", "pen"}}}, m_stop.get_token(),
                            grace);
    }

    bool WaitForFile(const std::string& name) const {
        return test_support::WaitUntil([&] { return std::filesystem::exists(m_folder / name); });
    }

    TemporaryFolder m_folder;
    std::stop_source m_stop;
};

TEST_F(Installer, ExitStatusZeroIsSuccess) { EXPECT_EQ(Run(Shell("exit 0")).end, InstallerEnd::kSucceeded); }

TEST_F(Installer, AnotherExitStatusIsAFailureThatSaysWhich) {
    const InstallerResult status = Run(Shell("exit 3"));
    EXPECT_EQ(status.end, InstallerEnd::kFailed);
    EXPECT_EQ(status.reason, "exit status 3");
}

TEST_F(Installer, OneThatCrashedIsAFailureThatSaysSo) {
#if defined(_WIN32)
    const InstallerResult crashed = Run(Shell("exit -1073741819"));  // the status of an access violation
    EXPECT_EQ(crashed.reason, "exception 0xC0000005");
#else
    const InstallerResult crashed = Run(Shell("kill -9 $$"));
    EXPECT_EQ(crashed.reason, "signal 9");
#endif
    EXPECT_EQ(crashed.end, InstallerEnd::kFailed);
}

TEST_F(Installer, AProgramThatIsNotThereIsAFailureThatNamesIt) {
    const InstallerResult result = Run({kMissing});
    EXPECT_EQ(result.end, InstallerEnd::kFailed);
    const std::string start = std::string(kMissing) + ": cannot be started: ";
    EXPECT_THAT(result.reason, testing::StartsWith(start));
    EXPECT_GT(result.reason.size(), start.size());
}

TEST_F(Installer, RunsInItsFolderWithItsVariables) {
    const Variable replaced("ACCESSORY_KEY", "of the service");
    const Variable inherited("INHERITED", "yes");
    EXPECT_EQ(Run(Shell(kTellVariables)).end, InstallerEnd::kSucceeded);
    EXPECT_THAT(ReadFile(m_folder / "result"), testing::StartsWith("pen yes"));
    EXPECT_STREQ(std::getenv("ACCESSORY_KEY"), "of the service");  // the service keeps its own
}

TEST_F(Installer, ItsOutputGoesWhereTheLogGoesAndItHasNoInput) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const InstallerResult result = Run(Shell(kComplainWithoutInput));
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(result.reason, "exit status 2");
#if !defined(_WIN32)  // what is captured there is the C library's, and none that a child gets
    EXPECT_EQ(errors, "spoken\ncomplained\n");
#endif
}

TEST_F(Installer, OneThatDoesNotEndIsAbandonedWhenTheServiceStops) {
    WriteFile(m_folder / "wait.cmd", "@echo.> started\r\n:again\r\n@if not exist gate goto again\r\n@echo.> done\r\n");
    std::jthread stopper([&] {
        EXPECT_TRUE(WaitForFile("started"));
        m_stop.request_stop();
    });
    EXPECT_EQ(Run(Shell(kWaitAndTell)).end, InstallerEnd::kAbandoned);
    WriteFile(m_folder / "gate", "");  // it has not been ended
    EXPECT_TRUE(WaitForFile("done"));
}

TEST_F(Installer, OneThatEndsWithinTheGraceCountsAsEver) {
    std::jthread gatekeeper([&] {
        EXPECT_TRUE(WaitForFile("started"));
        m_stop.request_stop();
        WriteFile(m_folder / "gate", "");
    });
    EXPECT_EQ(Run(Shell(kEndWhenStopped), std::chrono::seconds(30)).reason, "exit status 4");
}

#if !defined(_WIN32)
TEST_F(Installer, RunsAProgramOfItsFolderWithItsArguments) {
    WriteFile(m_folder / "install.sh", "#!/bin/sh\necho \"$1 $2\" > result\n");
    std::filesystem::permissions(m_folder / "install.sh", std::filesystem::perms::owner_all);
    EXPECT_EQ(Run({"./install.sh", "one", "two words"}).end, InstallerEnd::kSucceeded);
    EXPECT_EQ(ReadFile(m_folder / "result"), "one two words\n");
}

TEST_F(Installer, HasAGroupOfItsOwnWhichTheTerminalDoesNotStop) {
    ASSERT_EQ(Run(Shell("ps -o pgid= -p $$ >result; echo $$ >>result")).end, InstallerEnd::kSucceeded);
    std::istringstream result(ReadFile(m_folder / "result"));
    pid_t group = 0, own = 0;
    result >> group >> own;
    EXPECT_NE(own, 0);
    EXPECT_EQ(group, own);
    EXPECT_NE(group, getpgid(0));
}

TEST_F(Installer, StartsWithNoSignalHeldBack) {
    sigset_t held, before;
    sigemptyset(&held);
    sigaddset(&held, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &held, &before);
    const InstallerResult result = Run(Shell("kill -TERM $$; exit 2"));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(result.reason, "signal 15");
}
#endif

}  // namespace
}  // namespace update_service
