// Pictures of the window: those that a script takes, and the one that the host takes by itself, and ends.

#include <signal.h>

#include "page_e2e_test.h"

namespace e2e {
namespace {

class ScreenshotTest : public PageE2ETest {
protected:
    ScreenshotTest() {
        for (const char* key : {"pen", "dock"}) AddAccessory(key);
        StartService();
    }

    // Runs a host to its end and returns the picture; the transcript names it. The page takes its time: a picture that
    // is taken too early shows less.
    std::string Screenshot(std::vector<std::string> options, const std::map<std::string, std::string>& environment) {
        const std::string file = (m_folder / "screenshot.png").string();
        options.insert(options.end(), {"--quiet-log", "--screenshot", file});
        test_process::Process host(SETTINGS_HOST_PROGRAM, options, environment);
        EXPECT_EQ(host.WaitForEnd(), 0) << host.Output().Text() << host.Errors().Text();
        EXPECT_THAT(host.Output().Lines(), Contains("picture: " + file));
        return ReadFile(file);
    }

    // What a script's picture shows of a page that was brought there.
    std::string PictureOf(const std::string& lines) {
        const auto host = StartHost({"--pictures", m_folder.Path().string(), "--scale", "150"});
        EXPECT_TRUE(host->Play(lines + "\npicture expected.png"));
        host->End();
        return ReadFile(m_folder / "expected.png");
    }
};

TEST_F(ScreenshotTest, WithoutAScriptItShowsTheListAtRest) {
    const std::string expected = PictureOf(WaitForRows(2, "dock") + "wait hidden pendevInfo");
    ASSERT_THAT(expected, testing::StartsWith("\x89PNG"));
    EXPECT_TRUE(Screenshot({"--headless", "--scale", "150"}, HostEnvironment()) == expected);
}

TEST_F(ScreenshotTest, WithAScriptItShowsWhatTheScriptLeft) {
    const std::string lines =
        WaitForRows(2, "dock") + "wait hidden pendevInfo\nclick penpulldown\nwait shown pendevInfo";
    const std::string expected = PictureOf(lines);
    WriteFile(m_folder / "test.script", lines);
    const std::vector<std::string> options = {"--headless", "--scale", "150", "--script",
                                              (m_folder / "test.script").string()};
    EXPECT_TRUE(Screenshot(options, HostEnvironment()) == expected);
}

TEST_F(ScreenshotTest, AScriptsPictureShowsWhatThePageToldJustBefore) {
    const std::string rest = WaitForRows(2, "dock") + "wait hidden pendevInfo";
    const std::string open = "click penpulldown\nwait shown pendevInfo";
    const std::string expected = PictureOf(rest + "\n" + open + "\nwait height 212");
    const auto host = StartHost({"--pictures", m_folder.Path().string(), "--scale", "150", "--trace"});
    ASSERT_TRUE(host->Play(rest));
    kill(m_service->Id(), SIGSTOP);  // with it the pipe, and the height that the page tells on it
    EXPECT_TRUE(host->Play(open));
    host->Program().Write("picture early.png\n");
    EXPECT_TRUE(host->Program().Output().WaitFor("post 0x1B0000 -> 0x1B0000")) << host->Transcript();
    EXPECT_THAT(host->Transcript(), Not(HasSubstr("picture: ")));
    kill(m_service->Id(), SIGCONT);
    EXPECT_TRUE(host->Play("say taken"));
    EXPECT_TRUE(ReadFile(m_folder / "early.png") == expected);
    host->End();
}

TEST_F(ScreenshotTest, APictureIsTakenWithoutAService) {
    const auto host = StartHost({"--pictures", m_folder.Path().string(), "--scale", "150"});
    ASSERT_TRUE(host->Play(WaitForRows(2, "dock")));
    StopService();
    EXPECT_TRUE(host->Play("wait disconnected\nwait shown serviceBar\npicture away.png"));
    EXPECT_THAT(ReadFile(m_folder / "away.png"), testing::StartsWith("\x89PNG"));
    host->End();
}

TEST_F(ScreenshotTest, WithoutADisplayItIsTakenAllTheSame) {
    const std::string expected = PictureOf(WaitForRows(2, "dock") + "wait hidden pendevInfo");
    EXPECT_TRUE(Screenshot({"--language", "en-US", "--scale", "150"}, WindowEnvironment(":64999")) == expected);
}

}  // namespace
}  // namespace e2e
