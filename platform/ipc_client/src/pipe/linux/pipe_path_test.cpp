#include "pipe/pipe_path.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

#include "temporary_folder.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;

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

}  // namespace
}  // namespace ipc_client
