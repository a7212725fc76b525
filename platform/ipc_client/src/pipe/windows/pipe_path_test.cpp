#include "pipe/pipe_path.h"

#include <gtest/gtest.h>

#include "base/process.h"

namespace ipc_client {
namespace {

using base::SetVariable;

class PipePathTest : public ::testing::Test {
protected:
    PipePathTest() { SetVariable("BRINDLE_PIPE_DIR", std::nullopt); }
    ~PipePathTest() override { SetVariable("BRINDLE_PIPE_DIR", std::nullopt); }
};

TEST_F(PipePathTest, WithoutAChosenFolderThePipeHasItsOwnName) {
    EXPECT_EQ(PipePath(L"\\\\.\\Pipe\\iKorvelAssistant").native(), L"\\\\.\\Pipe\\iKorvelAssistant");
}

TEST_F(PipePathTest, AChosenFolderPutsItsMarkBeforeTheName) {
    SetVariable("BRINDLE_PIPE_DIR", "one");
    const std::wstring one = PipePath(L"\\\\.\\Pipe\\P").native();
    EXPECT_EQ(one.rfind(L"\\\\.\\Pipe\\brindle-", 0), 0u);
    EXPECT_TRUE(one.ends_with(L"-P"));
    EXPECT_EQ(PipePath(L"\\\\.\\Pipe\\P").native(), one);
    SetVariable("BRINDLE_PIPE_DIR", "two");
    EXPECT_NE(PipePath(L"\\\\.\\Pipe\\P").native(), one);
}

TEST_F(PipePathTest, CharactersThatANameCannotCarryAreReplaced) {
    const struct {
        const wchar_t* name;
        const wchar_t* path;
    } cases[] = {
        {L"\\\\.\\pipe\\P", L"\\\\.\\Pipe\\P"},
        {L"P", L"\\\\.\\Pipe\\P"},
        {L"\\\\.\\Pipe\\a/b\\c\n", L"\\\\.\\Pipe\\a_b_c_"},
        {L"\\\\.\\Pipe\\\u00e9", L"\\\\.\\Pipe\\\u00e9"},
    };
    for (const auto& name : cases) EXPECT_EQ(PipePath(name.name).native(), name.path);
}

}  // namespace
}  // namespace ipc_client
