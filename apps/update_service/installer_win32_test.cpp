#include <gmock/gmock.h>
#include <windows.h>

#include <thread>

#include "app_system/command_line_win32.h"
#include "installer.h"
#include "test_folder.h"

namespace update_service {
namespace {

using test_support::ReadFile;
using test_support::TestFolder;
using test_support::WriteFile;

using app_system::CommandLineOf;
using std::chrono::milliseconds;

class Installer : public testing::Test {
protected:
    InstallerResult Run(std::vector<std::string> command) {
        return RunInstaller({std::move(command), m_folder.Path(), {{"ACCESSORY_KEY", "pen"}}}, m_stop.get_token(),
                            milliseconds(0));
    }
    InstallerResult RunShell(const std::string& text) { return Run({"cmd.exe", "/d", "/s", "/c", text, "PACKAGE"}); }

    TestFolder m_folder;
    std::stop_source m_stop;
};

TEST_F(Installer, ExitStatusZeroIsSuccess) { EXPECT_EQ(RunShell("exit 0").end, InstallerEnd::kSucceeded); }

TEST_F(Installer, AnotherExitStatusOrAnExceptionIsAFailureThatSaysWhich) {
    const InstallerResult status = RunShell("exit 3");
    EXPECT_EQ(status.end, InstallerEnd::kFailed);
    EXPECT_EQ(status.reason, "exit status 3");
    const InstallerResult crashed = RunShell("exit -1073741819");  // the status of an access violation
    EXPECT_EQ(crashed.end, InstallerEnd::kFailed);
    EXPECT_EQ(crashed.reason, "exception 0xC0000005");
}

TEST_F(Installer, AProgramThatIsNotThereIsAFailure) {
    const InstallerResult result = Run({"./missing.exe"});
    EXPECT_EQ(result.end, InstallerEnd::kFailed);
    EXPECT_THAT(result.reason, testing::StartsWith("cannot be started: "));
    EXPECT_GT(result.reason.size(), std::string("cannot be started: ").size());
}

TEST_F(Installer, RunsInItsFolderWithItsVariables) {
    SetEnvironmentVariableW(L"accessory_key", L"of the service");
    SetEnvironmentVariableW(L"INHERITED", L"yes");
    EXPECT_EQ(RunShell("echo \"%ACCESSORY_KEY%\" %INHERITED%> result").end, InstallerEnd::kSucceeded);
    EXPECT_EQ(ReadFile(m_folder / "result"), "\"pen\" yes\r\n");
}

TEST_F(Installer, HasNoInput) {
    EXPECT_EQ(RunShell("set line=& set /p line=& if defined line (exit 1) else (exit 2)").reason, "exit status 2");
}

TEST_F(Installer, OneThatDoesNotEndIsAbandonedWhenTheServiceStops) {
    std::jthread stopper([&] {
        while (!std::filesystem::exists(m_folder / "started")) std::this_thread::yield();
        m_stop.request_stop();
    });
    WriteFile(m_folder / "wait.cmd", "@echo.> started\r\n:again\r\n@if not exist gate goto again\r\n@echo.> done\r\n");
    EXPECT_EQ(RunShell("wait.cmd").end, InstallerEnd::kAbandoned);
    WriteFile(m_folder / "gate", "");  // it has not been ended
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!std::filesystem::exists(m_folder / "done") && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_TRUE(std::filesystem::exists(m_folder / "done"));
}

TEST_F(Installer, OneThatEndsWithinTheGraceCountsAsEver) {
    m_stop.request_stop();
    const InstallerResult result = RunInstaller({{"cmd.exe", "/d", "/s", "/c", "exit 4"}, m_folder.Path(), {}},
                                                m_stop.get_token(), milliseconds(10000));
    EXPECT_EQ(result.reason, "exit status 4");
}

TEST(CommandLine, WordsAreQuotedAsProgramsTakeThemApart) {
    EXPECT_EQ(CommandLineOf({"a.exe", "b", "c d", "", "e\"f", "g h\\", "i\\j"}),
              L"a.exe b \"c d\" \"\" \"e\\\"f\" \"g h\\\\\" i\\j");
    EXPECT_EQ(CommandLineOf({"\xC3\xA9.exe"}), L"\u00E9.exe");
}

TEST(CommandLine, TheInterpretersTextStaysAsItIs) {
    EXPECT_EQ(CommandLineOf({"cmd.exe", "/d", "/s", "/c", "copy \"a b\" c", "package"}),
              L"cmd.exe /d /s /c \"copy \"a b\" c\"");
}

}  // namespace
}  // namespace update_service
