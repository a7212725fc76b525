#include "accessory_update_config/accessory_update_config.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <fstream>
#include <thread>
#include <vector>

extern char** environ;

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

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
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!AccessoryUpdateConfig::IsAccessoryAppRunning(deviceKey)) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::yield();
    }
    return true;
}

class Config : public testing::Test {
protected:
    Config() {
        std::string name = (fs::temp_directory_path() / "companions_XXXXXX").string();
        m_folder = mkdtemp(name.data());
    }
    ~Config() override {
        Load(R"({"companions": {}})");
        fs::remove_all(m_folder);
    }

    void Load(const std::string& text) {
        std::ofstream(File()) << text;
        AccessoryUpdateConfig::Load(File());
    }

    std::string ErrorOf(const std::string& text) {
        try {
            Load(text);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no error";
    }

    // A copy of a program under a name of its own.
    std::string Copy(const char* program, const std::string& name) {
        fs::copy_file(program, m_folder / name);
        return (m_folder / name).string();
    }

    fs::path File() const { return m_folder / "companions.json"; }

    // Names that nothing else on this machine has.
    std::string Unique(const std::string& suffix) const { return m_folder.filename().string() + suffix; }

    fs::path m_folder;
};

TEST_F(Config, KnowsWhichAccessoriesHaveACompanion) {
    Load(R"({"companions": {"pen-01": {"program": "pen_studio"}, "\u7B14": {"program": "x"}}})");
    EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"pen-01"));
    EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"\u7B14"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryApp(L"pen-02"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryApp(L""));
}

TEST_F(Config, LoadingReplacesWhatWasThere) {
    Load(R"({"companions": {"a": {"program": "x"}}})");
    Load(R"({"companions": {"b": {"program": "x"}}})");
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryApp(L"a"));
    EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"b"));
}

TEST_F(Config, ACompanionRunsFromItsStartToItsEnd) {
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

TEST_F(Config, OnlyTheWholeFileNameCounts) {
    const std::string name = Unique("_program");
    Load(R"({"companions": {"pen": {"program": ")" + name + R"("}, "other": {"program": ")" + name + R"(_two"}}})");
    Program program({Copy("/bin/sleep", name + "_two"), "60"});
    ASSERT_TRUE(program.HasStarted());
    ASSERT_TRUE(IsSeenRunning(L"other"));
    EXPECT_FALSE(AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"));
}

TEST_F(Config, AProgramWhoseFileWasReplacedWhileItRunsStillRuns) {
    const std::string name = Unique("_replaced");
    Load(R"({"companions": {"pen": {"program": ")" + name + R"("}}})");
    const std::string path = Copy("/bin/sleep", name);
    Program program({path, "60"});
    ASSERT_TRUE(program.HasStarted());
    fs::remove(path);
    EXPECT_TRUE(IsSeenRunning(L"pen"));
}

TEST_F(Config, ARunningScriptIsFoundAndAMentionedOneIsNot) {
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

TEST_F(Config, ErrorsNameTheFileThePlaceAndTheReason) {
    struct Case {
        const char* text;
        const char* expected;
    };
    const Case cases[] = {
        {"{\n  \"companions\": oops }", "parse error at line 2, column 17"},
        {"", "parse error at line 1, column 1"},
        {"[]", "must be an object"},
        {"{}", "companions: is missing"},
        {R"({"companions": []})", "companions: must be an object"},
        {R"({"companion": {}})", "companion: is not known here"},
        {R"({"companions": {"pen": "x"}})", "companions.pen: must be an object"},
        {R"({"companions": {"pen": {}}})", "companions.pen.program: is missing"},
        {R"({"companions": {"pen": {"program": 7}}})", "companions.pen.program: must be a text"},
        {R"({"companions": {"pen": {"program": ""}}})", "companions.pen.program: must not be empty"},
        {R"({"companions": {"pen": {"program": "bin/x"}}})", "companions.pen.program: must be a file name"},
        {R"({"companions": {"pen": {"program": "x", "arg": 1}}})", "companions.pen.arg: is not known here"},
    };
    for (const Case& c : cases) {
        const std::string error = ErrorOf(c.text);
        EXPECT_THAT(error, testing::StartsWith(File().string() + ": "));
        EXPECT_THAT(error, HasSubstr(c.expected));
    }
}

TEST_F(Config, AMissingFileIsNamed) {
    try {
        AccessoryUpdateConfig::Load(m_folder / "missing.json");
        FAIL() << "loaded";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr((m_folder / "missing.json").string()));
        EXPECT_THAT(error.what(), HasSubstr("No such file"));
    }
}

TEST_F(Config, ABadFileLeavesTheOldConfiguration) {
    Load(R"({"companions": {"a": {"program": "x"}}})");
    EXPECT_NE(ErrorOf("{"), "no error");
    EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"a"));
}

TEST_F(Config, MayBeAskedWhileItIsLoaded) {
    std::ofstream(File()) << R"({"companions": {"a": {"program": "x"}}})";
    AccessoryUpdateConfig::Load(File());
    std::jthread loader([this] {
        for (int i = 0; i < 50; ++i) AccessoryUpdateConfig::Load(File());
    });
    for (int i = 0; i < 200; ++i) EXPECT_TRUE(AccessoryUpdateConfig::IsAccessoryApp(L"a"));
}

}  // namespace
