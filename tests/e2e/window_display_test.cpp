// What the window takes from its display, and what it leaves alone.

#include <fstream>
#include <sstream>

#include "duilib/paint_surface.h"
#include "window_e2e_test.h"

namespace e2e {
namespace {

using test_display::ScreenImage;

class DisplayTest : public WindowE2ETest {
protected:
    using WindowE2ETest::WindowE2ETest;

    void OpenPage(std::vector<std::string> options = {}) {
        for (const char* key : {"pen", "dock"}) AddAccessory(key);
        StartService();
        OpenWindow(options, 2, "dock");
    }

    // The window covers the middle of the screen in this size, and its rows have this height [device px].
    void ExpectSize(int width, int height, int row) {
        EXPECT_TRUE(WaitUntil([&] { return LitPart().width == width && LitPart().height == height; }))
            << LitPart().width << " x " << LitPart().height;
        EXPECT_EQ(m_host->Where("penhor").height, row);
    }
};

TEST_F(DisplayTest, AtPlainDensityADesignPixelIsOneOfTheScreen) {
    OpenPage();
    ExpectSize(880, 600, 52);
    m_host->End();
}

class FineDisplayTest : public DisplayTest {
protected:
    FineDisplayTest() : DisplayTest({2000, 1400}, 192) {}
};

TEST_F(FineDisplayTest, AtTwiceTheDensityTheWindowIsTwiceAsLarge) {
    OpenPage();
    ExpectSize(1760, 1200, 104);
    ClickOn("penpulldown");
    Play("wait shown pendevInfo");
    m_host->End();
}

TEST_F(FineDisplayTest, AScaleOfTheCommandLineOverridesTheDisplay) {
    OpenPage({"--scale", "150"});
    ExpectSize(1320, 900, 78);
    m_host->End();
}

TEST_F(FineDisplayTest, AWindowIsNoLargerThanItsDisplay) {
    OpenPage({"--scale", "300"});  // it would be 2640 x 1800
    ExpectSize(2000, 1400, 156);
    const Place navigation = m_host->Where("navAccessories");
    EXPECT_GE(navigation.x, 0);
    EXPECT_GE(navigation.y, 0);
    m_host->End();
}

class PictureTest : public DisplayTest {
protected:
    void OpenPage() { DisplayTest::OpenPage({"--pictures", m_folder.Path().string()}); }

    // How many pixels of the window on the screen are others than in the host's own picture of this moment.
    int Differences() {
        const auto picture = DuiLib::PaintSurface::LoadPng(Picture());
        const ScreenImage screen = m_hands.Screenshot();
        const auto origin = m_hands.WindowOrigin(kTitle);
        int others = 0;
        for (int y = 0; y < picture.Size().cy; ++y) {
            for (int x = 0; x < picture.Size().cx; ++x) {
                others += screen.Pixel(origin.x + x, origin.y + y) != (picture.Pixel(x, y) & 0xFFFFFF);
            }
        }
        return others;
    }

    void ExpectTheScreenShowsThePicture() {
        Play("picture window.png");
        const auto size = DuiLib::PaintSurface::LoadPng(Picture()).Size();
        EXPECT_EQ(size.cx, 880);
        EXPECT_EQ(size.cy, 600);
        EXPECT_TRUE(WaitUntil([&] { return Differences() == 0; })) << Differences();
    }

    std::filesystem::path Picture() const { return m_folder / "window.png"; }
};

TEST_F(PictureTest, TheScreenShowsWhatTheWindowPaints) {
    OpenPage();
    ExpectTheScreenShowsThePicture();
    PointAt("penupdateBtn");
    ClickOn("dockpulldown");
    Play("wait shown dockdevInfo");
    EXPECT_NE(Differences(), 0) << "the picture is older";
    ExpectTheScreenShowsThePicture();
    MoveFocus("Tab", {"navAccessories"});
    ExpectTheScreenShowsThePicture();
    ClickOn("navAbout");
    Play("wait shown aboutView");
    ExpectTheScreenShowsThePicture();
    m_host->End();
}

TEST_F(PictureTest, ControlsLieOnTheScreenWhereTheHostSays) {
    OpenPage();
    const auto origin = m_hands.WindowOrigin(kTitle);
    const Place list = m_host->Where("accessoriesView");
    EXPECT_EQ(list.x + list.width, origin.x + 880);
    EXPECT_EQ(list.y + list.height, origin.y + 600);
    m_host->End();
}

class NoDisplayTest : public PageE2ETest {
protected:
    void ExpectOneClearLine(std::map<std::string, std::string> environment) {
        environment.merge(WindowEnvironment(":64999"));
        test_process::Process host(SETTINGS_HOST_PROGRAM, {}, environment);
        EXPECT_EQ(host.WaitForEnd(), 1) << host.Output().Text();
        const std::string error = host.Errors().Text();
        EXPECT_THAT(error, testing::StartsWith("settings_host: no window can be opened: "));
        EXPECT_THAT(error, HasSubstr("--headless"));
        EXPECT_EQ(error.find('\n'), error.size() - 1) << error;
    }
};

TEST_F(NoDisplayTest, TheHostSaysSoInOneLine) { ExpectOneClearLine({}); }

TEST_F(NoDisplayTest, NoWindowIsOpenedWhereNobodySeesIt) {
    ExpectOneClearLine(
        {{"SDL_VIDEODRIVER", ""}, {"WAYLAND_DISPLAY", ""}, {"XDG_RUNTIME_DIR", m_folder.Path().string()}});
}

class IdleTest : public PictureTest {
protected:
    struct Work {
        long ticks = 0;     // of processor time
        long switches = 0;  // how often its threads were given a processor

        bool operator==(const Work&) const = default;
    };

    // All that the process has done so far.
    static Work Done(int process) {
        const std::filesystem::path folder = "/proc/" + std::to_string(process);
        const std::string stat = ReadFile(folder / "stat");
        std::istringstream fields(stat.substr(stat.rfind(')') + 1));
        constexpr int kBeforeUserTime = 11;
        std::string ignored;
        for (int i = 0; i < kBeforeUserTime; ++i) fields >> ignored;
        Work work;
        long system = 0;
        fields >> work.ticks >> system;
        work.ticks += system;
        for (const auto& thread : std::filesystem::directory_iterator(folder / "task")) {
            std::ifstream lines(thread.path() / "status");
            for (std::string line; std::getline(lines, line);) {
                constexpr std::string_view kSwitches = "voluntary_ctxt_switches:";
                if (line.starts_with(kSwitches)) work.switches += std::stol(line.substr(kSwitches.size()));
            }
        }
        return work;
    }
};

// A host that plays a script looks at its input again and again; so the page at rest is known by its looks.
TEST_F(IdleTest, APageAtRestTakesNoProcessorTime) {
    constexpr std::chrono::milliseconds kWatched{2200};  // even a timer of 500 ms wakes it four times meanwhile
    constexpr int kFew = 2;
    OpenPage();
    ExpectTheScreenShowsThePicture();
    const auto atRest = m_hands.Screenshot().pixels;
    m_host->End();
    ASSERT_TRUE(WaitUntil([&] { return m_hands.Screenshot().pixels != atRest; }));

    const test_process::Process host(SETTINGS_HOST_PROGRAM, {"--language", "en-US"},
                                     WindowEnvironment(m_display.Name()));
    ASSERT_TRUE(WaitUntil([&] { return m_hands.Screenshot().pixels == atRest; })) << host.Errors().Text();
    Work before;
    const auto rests = [&] {
        before = Done(host.Id());
        static_cast<void>(m_hands.Screenshot());
        return Done(host.Id()) == before;
    };
    ASSERT_TRUE(WaitUntil(rests)) << "it never rests";
    const auto woken = [&] { return Done(host.Id()).switches - before.switches; };
    EXPECT_FALSE(WaitUntil([&] { return woken() > kFew; }, kWatched)) << "something wakes it again and again";
    EXPECT_LE(Done(host.Id()).ticks - before.ticks, 1);
}

}  // namespace
}  // namespace e2e
