#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>

#include "accessory_update_config/accessory_update_config.h"
#include "base/child_process.h"
#include "base/file.h"
#include "temporary_folder.h"

namespace {

namespace fs = std::filesystem;

std::wstring OwnProgram() {
    wchar_t path[MAX_PATH];
    return std::wstring(path, GetModuleFileNameW(nullptr, path, MAX_PATH));
}

// This program under another name, which stands and waits until the object goes.
class Program {
public:
    explicit Program(const fs::path& file) : m_process(Start(file)) {}
    ~Program() { Stop(); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void Stop() { m_process.Kill(); }

private:
    // In the folder of its libraries.
    static base::ChildProcess Start(const fs::path& file) {
        fs::copy_file(OwnProgram(), file);
        const fs::path libraries = fs::path(OwnProgram()).parent_path();
        return base::ChildProcess({.command = {base::Utf8FromPath(file), "--gtest_also_run_disabled_tests",
                                               "--gtest_filter=StandIn.DISABLED_Waits"},
                                   .folder = libraries,
                                   .environment = {{"PATH", base::Utf8FromPath(libraries)}}});
    }

    base::ChildProcess m_process;
};

// Not a test: what a copy of this program does.
TEST(StandIn, DISABLED_Waits) { ::Sleep(60'000); }

class Companion : public testing::Test {
protected:
    ~Companion() override { Load("unset"); }

    void Load(const std::string& program) {
        std::ofstream(m_folder / "companions.json")
            << R"({"companions": {"pen": {"program": ")" << program << R"("}}})";
        AccessoryUpdateConfig::Load(m_folder / "companions.json");
    }

    static bool Runs() { return AccessoryUpdateConfig::IsAccessoryAppRunning(L"pen"); }

    // Names that nothing else on this machine has.
    std::string Unique(const std::string& suffix) const { return m_folder.Path().filename().string() + suffix; }

    const test_support::TemporaryFolder m_folder{"companions"};
};

TEST_F(Companion, RunsFromItsStartToItsEnd) {
    Load(Unique("_tool"));
    EXPECT_FALSE(Runs());
    Program program(m_folder / Unique("_tool.exe"));
    EXPECT_TRUE(Runs());
    program.Stop();
    EXPECT_FALSE(Runs());
}

TEST_F(Companion, IsFoundInAnyCaseWithAndWithoutItsExtension) {
    const Program program(m_folder / Unique("_Tool.exe"));
    for (const char* name : {"_Tool", "_tool", "_TOOL.EXE", "_Tool.exe"}) {
        Load(Unique(name));
        EXPECT_TRUE(Runs()) << name;
    }
}

TEST_F(Companion, OnlyTheWholeFileNameCounts) {
    const Program program(m_folder / Unique("_tool_two.exe"));
    for (const char* name : {"_tool", "_tool_two.ex", "_tool_two.exe.exe", "_two"}) {
        Load(Unique(name));
        EXPECT_FALSE(Runs()) << name;
    }
}

}  // namespace
