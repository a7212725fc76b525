// Errors of whoever starts the programs: one clear message that names the file, and exit code 1.

#include "page_e2e_test.h"

namespace e2e {
namespace {

class ErrorsTest : public PageE2ETest {
protected:
    // Runs a host that does not open a page for long, and returns what it says on standard error.
    std::string ErrorOfHost(std::vector<std::string> options) {
        options.insert(options.end(), {"--headless", "--quiet-log", "--wait-percent", "1"});
        test_process::Process host(SETTINGS_HOST_PROGRAM, options, HostEnvironment());
        EXPECT_EQ(host.WaitForEnd(), 1) << host.Output().Text() << host.Errors().Text();
        return host.Errors().Text();
    }

    std::string Script(const std::string& lines) {
        WriteFile(m_folder / "test.script", lines);
        return (m_folder / "test.script").string();
    }
};

TEST_F(ErrorsTest, AHostThatLacksAFileNamesItInOneLine) {
    const std::string nowhere = (m_folder / "nowhere").string();
    const std::string notModule = KERNEL_LIBRARY;
    const std::string broken = (m_folder / "broken.json").string();
    const std::string notFolder = broken;
    WriteFile(broken, "{");
    const struct {
        std::vector<std::string> options;
        std::string file;
        std::string reason;
    } cases[] = {
        {{"--module", nowhere}, nowhere, "the module cannot be loaded: "},
        {{"--module", notModule}, notModule, "the module does not export CreateSetting"},
        {{"--language", "xx-XX"}, "components/brindle/res/language/xx-XX.xml", "the file cannot be read: No such file"},
        {{"--components", nowhere},
         nowhere + "/brindle/res/language/en-US.xml",
         "the file cannot be read: No such file"},
        {{"--script", nowhere}, nowhere, "the script cannot be read: No such file or directory"},
        {{"--companions", nowhere}, nowhere, ": cannot be opened: No such file or directory"},
        {{"--companions", broken}, broken, ": parse error at line 1, column 2: "},
        {{"--log-file", notFolder + "/host.log"}, notFolder + "/host.log", "Not a directory"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.options[0] + " " + c.options[1]);
        const std::string error = ErrorOfHost(c.options);
        EXPECT_THAT(error, testing::StartsWith("settings_host: "));
        EXPECT_THAT(error, HasSubstr(c.file));
        EXPECT_THAT(error, HasSubstr(c.reason));
        EXPECT_EQ(error.find('\n'), error.size() - 1) << error;
    }
}

TEST_F(ErrorsTest, AScriptErrorNamesFileAndLine) {
    const struct {
        const char* line;
        const char* reason;
    } cases[] = {
        {"jump penupdateBtn", "unknown command \"jump\""},
        {"wait shown", "a control's name is missing"},
        {"wait sunshine", "unknown condition \"sunshine\""},
        {"click nothing-of-that-name", "no control has that name"},
        {"start no_such_program", "no_such_program: cannot be started: No such file or directory"},
        {"stop pen_studio", "pen_studio was not started by the script"},
        {"wait connected within 1", "wait connected: not within 1 s; it is not so"},
        {"wait text pen \"Up to date\" within 1",
         "wait text pen \"Up to date\": not within 1 s; no control has that name"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        const std::string script = Script(std::string("# a comment\nsay hello\n") + c.line + "\nsay not reached\n");
        const std::string error = ErrorOfHost({"--script", script});
        EXPECT_THAT(error, testing::StartsWith("settings_host: " + script + ":3: "));
        EXPECT_THAT(error, HasSubstr(c.reason));
        EXPECT_EQ(error.find('\n'), error.size() - 1) << error;
    }
}

TEST_F(ErrorsTest, ACatalogueWithAWrongFieldIsRefusedWithFileEntryAndField) {
    const std::string file = (m_folder / "catalogue.json").string();
    WriteFile(file, R"({"accessories": [{"deviceKey": "pen", "modelId": 7}]})");
    test_process::Process service(UPDATE_SERVICE_PROGRAM,
                                  {"--catalogue", file, "--work-dir", (m_folder / "work").string()}, Environment());
    EXPECT_EQ(service.WaitForEnd(), 1);
    EXPECT_EQ(service.Errors().Text(), "update_service: " + file + ": accessories[0].modelId: must be a text\n");
    EXPECT_FALSE(std::filesystem::exists(m_folder / "work"));
}

TEST_F(ErrorsTest, AServiceThatLacksWhatItNeedsSaysSoInOneLine) {
    AddAccessory("pen");
    StartService();
    ASSERT_TRUE(ServiceLogs("ready"));
    const std::string catalogue = (m_folder / "catalogue.json").string();
    const std::string nowhere = (m_folder / "nowhere").string();
    const std::string noFolder = catalogue + "/work";
    const std::string work = (m_folder / "other work").string();
    const struct {
        std::vector<std::string> options;
        std::string file;
        std::string reason;
    } cases[] = {
        {{"--catalogue", nowhere, "--work-dir", work}, nowhere, "cannot be opened: No such file or directory"},
        {{"--catalogue", catalogue, "--work-dir", noFolder}, noFolder, "the folder cannot be made: Not a directory"},
        {{"--catalogue", catalogue, "--work-dir", work, "--log-file", noFolder}, noFolder, "Not a directory"},
        {{"--catalogue", catalogue, "--work-dir", work}, PipeSocket().string(), "another broker"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        test_process::Process service(UPDATE_SERVICE_PROGRAM, c.options, Environment());
        EXPECT_EQ(service.WaitForEnd(), 1);
        const std::string error = service.Errors().Text();
        EXPECT_THAT(error, testing::StartsWith("update_service: "));
        EXPECT_THAT(error, HasSubstr(c.file));
        EXPECT_THAT(error, HasSubstr(c.reason));
        EXPECT_EQ(error.find('\n'), error.size() - 1) << error;
    }
}

TEST_F(ErrorsTest, ASignalWhileAScriptWaitsEndsTheHostWell) {
    const std::string script = m_folder / "wait.script";
    WriteFile(script, "say waiting\nwait nothing-left within 600\n");
    test_process::Process host(SETTINGS_HOST_PROGRAM, {"--headless", "--script", script}, HostEnvironment());
    ASSERT_TRUE(host.Output().WaitFor("# waiting"));
    host.AskToEnd();
    EXPECT_EQ(host.WaitForEnd(), 0) << host.Errors().Text();
    EXPECT_EQ(host.Output().Lines().back(), "stopped");
}

}  // namespace
}  // namespace e2e
