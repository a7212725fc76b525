#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <fstream>
#include <vector>

#include "accessory_update_config/accessory_update_config.h"
#include "temporary_folder.h"
#include "wait_until.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;

// A program of the test's own that runs until the object goes.
class Program {
public:
    explicit Program(std::vector<std::string> command) {
        std::vector<char*> arguments;
        for (std::string& word : command) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        if (posix_spawn(&m_process, command[0].c_str(), nullptr, nullptr, arguments.data(), environ) != 0)
            m_process = 0;
    }
    ~Program() {
        Stop();
        if (m_process > 0) waitpid(m_process, nullptr, 0);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    bool HasStarted() const { return m_process > 0; }

    // Ends it and leaves what the system keeps until somebody asks for its exit status.
    void Stop() {
        if (m_process <= 0) return;
        kill(m_process, SIGKILL);
        siginfo_t info;
        waitid(P_PID, static_cast<id_t>(m_process), &info, WEXITED | WNOWAIT);
    }

private:
    pid_t m_process = 0;
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
    ASSERT_TRUE(program.HasStarted());
    EXPECT_TRUE(IsSeenRunning(L"pen"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"other"));
    program.Stop();
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"));
}

TEST_F(Companion, OnlyTheWholeFileNameCounts) {
    const std::string name = Unique("_program");
    Load(R"({"companions": {"pen": {"program": ")" + name + R"("}, "other": {"program": ")" + name + R"(_two"}}})");
    Program program({Copy("/bin/sleep", name + "_two"), "60"});
    ASSERT_TRUE(program.HasStarted());
    ASSERT_TRUE(IsSeenRunning(L"other"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"));
}

TEST_F(Companion, AProgramWhoseFileWasReplacedWhileItRunsStillRuns) {
    const std::string name = Unique("_replaced");
    Load(R"({"companions": {"pen": {"program": ")" + name + R"("}}})");
    const std::string path = Copy("/bin/sleep", name);
    Program program({path, "60"});
    ASSERT_TRUE(program.HasStarted());
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
        ASSERT_TRUE(mention.HasStarted());
        ASSERT_TRUE(IsSeenRunning(L"other"));
        EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"));
    }
    Program script({path});
    ASSERT_TRUE(script.HasStarted());
    EXPECT_TRUE(IsSeenRunning(L"pen"));
}

}  // namespace
