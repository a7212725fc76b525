#include "pipe/pipe_path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <optional>

#include "temporary_folder.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

// Sets a variable of the environment, or removes it, for its lifetime.
class Variable {
public:
    Variable(const char* name, const char* value) : m_name(name) {
        if (const char* earlier = std::getenv(name)) m_earlier = earlier;
        Set(value);
    }
    ~Variable() { Set(m_earlier ? m_earlier->c_str() : nullptr); }

private:
    void Set(const char* value) { value != nullptr ? setenv(m_name, value, 1) : unsetenv(m_name); }

    const char* m_name;
    std::optional<std::string> m_earlier;
};

class PipePathTest : public ::testing::Test {
protected:
    const test_support::TemporaryFolder m_folder;
};

TEST_F(PipePathTest, TheNamedFolderComesFirst) {
    const Variable chosen("BRINDLE_PIPE_DIR", "/some/folder");
    const Variable runtime("XDG_RUNTIME_DIR", m_folder.Path().c_str());
    EXPECT_EQ(PipePath(L"\\\\.\\Pipe\\iKorvelAssistant"), "/some/folder/iKorvelAssistant.sock");
}

TEST_F(PipePathTest, TheRuntimeFolderComesSecond) {
    const Variable chosen("BRINDLE_PIPE_DIR", nullptr);
    const Variable runtime("XDG_RUNTIME_DIR", m_folder.Path().c_str());
    EXPECT_EQ(PipePath(L"\\\\.\\Pipe\\P"), m_folder / "brindle" / "P.sock");
}

TEST_F(PipePathTest, WithoutAUsableRuntimeFolderItIsUnderTmp) {
    const fs::path expected = "/tmp/brindle-" + std::to_string(geteuid()) + "/P.sock";
    const Variable chosen("BRINDLE_PIPE_DIR", "");
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative", "/no/such/folder", "/dev/null"}) {
        const Variable runtime("XDG_RUNTIME_DIR", value);
        EXPECT_EQ(PipePath(L"\\\\.\\Pipe\\P"), expected) << (value ? value : "unset");
    }
}

TEST_F(PipePathTest, NamesBecomeFileNames) {
    const Variable chosen("BRINDLE_PIPE_DIR", "/f");
    const struct {
        const wchar_t* name;
        const char* path;
    } cases[] = {
        {L"\\\\.\\Pipe\\P", "/f/P.sock"},
        {L"\\\\.\\pipe\\P", "/f/P.sock"},
        {L"P", "/f/P.sock"},
        {L"\\\\.\\Pipe\\", "/f/.sock"},
        {L"\\\\.\\Pipe\\a/b\\c\n", "/f/a_b_c_.sock"},
        {L"\\\\.\\Pipe\\..", "/f/...sock"},
        {L"\\\\.\\Pipe\\\u00e9", "/f/\xC3\xA9.sock"},
    };
    for (const auto& name : cases) EXPECT_EQ(PipePath(name.name), name.path);
}

TEST_F(PipePathTest, AMissingFolderIsMadeForThisUserOnly) {
    const fs::path folder = m_folder / "new";
    PreparePipeFolder(folder);
    struct stat info;
    ASSERT_EQ(stat(folder.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    EXPECT_NO_THROW(PreparePipeFolder(folder));
}

TEST_F(PipePathTest, AFolderOpenToOthersIsRefused) {
    for (const mode_t mode : {0777, 0710, 0704, 01777}) {
        chmod(m_folder.Path().c_str(), mode);
        EXPECT_THAT([&] { PreparePipeFolder(m_folder); },
                    ThrowsMessage<std::runtime_error>(
                        AllOf(HasSubstr(m_folder.Path().string()), HasSubstr("open to other users"))));
    }
}

TEST_F(PipePathTest, AFolderOfAnotherUserIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
    ASSERT_EQ(chown(m_folder.Path().c_str(), 12345, 12345), 0);
    EXPECT_THAT([&] { PreparePipeFolder(m_folder); },
                ThrowsMessage<std::runtime_error>(HasSubstr("belongs to another user")));
}

TEST_F(PipePathTest, WhatIsNoFolderIsRefused) {
    std::ofstream(m_folder / "file") << "x";
    EXPECT_THAT([&] { PreparePipeFolder(m_folder / "file"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("not a folder")));
    fs::create_symlink(m_folder, m_folder / "link");
    EXPECT_THAT([&] { PreparePipeFolder(m_folder / "link"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("not a folder")));
    EXPECT_THAT([&] { PreparePipeFolder(m_folder / "no" / "parent"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("No such file")));
}

}  // namespace
}  // namespace ipc_client
