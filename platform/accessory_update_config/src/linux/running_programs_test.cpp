#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <fstream>
#include <utility>
#include <vector>

#include "accessory_update_config/accessory_update_config.h"
#include "base/child_process.h"
#include "temporary_folder.h"
#include "wait_until.h"

namespace {

namespace fs = std::filesystem;

// A program of the test's own that runs until the object goes.
class Program {
public:
    explicit Program(std::vector<std::string> command) : m_process({.command = std::move(command)}) {}
    ~Program() { m_process.Kill(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Ends it and leaves what the system keeps until somebody asks for its exit status.
    void Stop() {
        kill(m_process.Id(), SIGKILL);
        siginfo_t info;
        waitid(P_PID, static_cast<id_t>(m_process.Id()), &info, WEXITED | WNOWAIT);
    }

private:
    base::ChildProcess m_process;
};

// A program that was just started takes a moment to get its own name.
bool IsSeenRunning(const std::wstring& deviceKey) {
    return test_support::WaitUntil([&] { return AccessoryUpdateConfig::IsAccessoryAppRunning(deviceKey); });
}

class Companion : public testing::Test {
protected:
    ~Companion() override { Load(R"({"companions": {}})"); }

    void Load(const std::string& text) {
        std::ofstream(m_folder / "companions.json") << text;
        AccessoryUpdateConfig::Load(m_folder / "companions.json");
    }

    // A copy of a program under a name of its own.
    std::string Copy(const char* program, const std::string& name) {
        fs::copy_file(program, m_folder / name);
        return (m_folder / name).string();
    }

    // Names that nothing else on this machine has.
    std::string Unique(const std::string& suffix) const { return m_folder.Path().filename().string() + suffix; }

    const test_support::TemporaryFolder m_folder{"companions"};
};

TEST_F(Companion, ACompanionRunsFromItsStartToItsEnd) {
    const std::string name = Unique("_with_a_name_longer_than_fifteen");
    Load(R"({"companions": {"pen": {"program": ")" + name + R"("}}})");
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"));
    Program program({Copy("/bin/sleep", name), "60"});
    EXPECT_TRUE(IsSeenRunning(L"pen"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"other"));
    program.Stop();
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"));
}

TEST_F(Companion, OnlyTheWholeFileNameCounts) {
    const std::string name = Unique("_program");
    Load(R"({"companions": {"pen": {"program": ")" + name + R"("}, "other": {"program": ")" + name + R"(_two"}}})");
    Program program({Copy("/bin/sleep", name + "_two"), "60"});
    ASSERT_TRUE(IsSeenRunning(L"other"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"));
}

TEST_F(Companion, AProgramWhoseFileWasReplacedWhileItRunsStillRuns) {
    const std::string name = Unique("_replaced");
    Load(R"({"companions": {"pen": {"program": ")" + name + R"("}}})");
    const std::string path = Copy("/bin/sleep", name);
    Program program({path, "60"});
    fs::remove(path);
    EXPECT_TRUE(IsSeenRunning(L"pen"));
}

TEST_F(Companion, ARunningScriptIsFoundAndAMentionedOneIsNot) {
    const std::string name = Unique("_script");
    const std::string path = (m_folder / name).string();
    const std::string pipe = (m_folder / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string wait = "read line < '" + pipe + "'";  // blocks inside the shell: it starts no other program
    std::ofstream(path) << "#!/bin/sh -e\n" << wait << "\n";
    fs::permissions(path, fs::perms::owner_all);
    Load(R"({"companions": {"pen": {"program": ")" + name + R"("}, "other": {"program": ")" + name + R"(_other"}}})");
    {
        Program mention({Copy("/bin/sh", name + "_other"), "-c", wait, path});
        ASSERT_TRUE(IsSeenRunning(L"other"));
        EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"));
    }
    Program script({path});
    EXPECT_TRUE(IsSeenRunning(L"pen"));
}

}  // namespace
