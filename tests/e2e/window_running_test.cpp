// What goes on while something else does: rows that wait, a service that comes and goes, closing the window.

#include <signal.h>

#include "window_e2e_test.h"

namespace e2e {
namespace {

class HeldRowTest : public WindowE2ETest {
protected:
    // The pen's row has ended and waits its time, for as long as the test holds it.
    void OpenPageWithAHeldRow() {
        AddAccessory("pen", 1000);
        AddAccessory("dock", 1000);
        StartService();
        OpenWindow({}, 2, "dock");
        Play("waits 1000000");
        ClickOn("penupdateBtn");
        Play("wait text penprogress \"Up to date\" within 30");
    }
};

TEST_F(HeldRowTest, WhileARowWaitsAnotherOneIsRepaintedUnderThePointerAndStartsItsUpdate) {
    OpenPageWithAHeldRow();
    const Place button = m_host->Where("dockupdateBtn");
    const int x = button.x + button.height / 2;  // behind the round corner, above the text
    const int y = button.y + 3;
    const std::uint32_t atRest = Colour(x, y);
    PointAt("dockupdateBtn");
    EXPECT_TRUE(WaitUntil([&] { return Colour(x, y) != atRest; })) << "the button has no hover look";
    PointAt("pageName");
    EXPECT_TRUE(WaitUntil([&] { return Colour(x, y) == atRest; })) << "the button keeps its hover look";

    ClickOn("dockupdateBtn");
    Play("wait hidden dockupdateBtn\nwait shown dockprogress");
    EXPECT_TRUE(WaitUntil([&] { return Colour(x, y) != atRest; })) << "the button is still on the screen";
    EXPECT_TRUE(ServiceLogs("dock: started"));
    Play("wait shown penhor\nwait text penprogress \"Up to date\"");

    Play("waits 1\nwait hidden penhor\nwait hidden dockhor\nwait nothing-left\nwait shown upToDateView");
    m_host->End();
}

TEST_F(HeldRowTest, TheWindowClosesOnceTheRowHasWaited) {
    OpenPageWithAHeldRow();
    m_hands.CloseWindow(kTitle);
    ClickOn("closeAnyway");
    EXPECT_EQ(m_host->Program().WaitForEnd(), 0) << m_host->Log();
}

class ServiceBarTest : public WindowE2ETest {
protected:
    // Whether the bar's ground is on the screen where the bar was last.
    bool BarIsSeen() {
        constexpr std::uint32_t kGround = 0xFFF3DC;
        return Colour(m_bar.x + m_bar.width / 2, m_bar.y + 3) == kGround;
    }

    Place m_bar;
};

TEST_F(ServiceBarTest, TheBarComesWhileThereIsNoServiceAndGoesByItself) {
    AddAccessory("pen");
    OpenWindow();
    Play("wait hidden serviceBar\nwait shown searchingView\nwait shown serviceBar");
    m_bar = m_host->Where("serviceBar");
    EXPECT_TRUE(WaitUntil([&] { return BarIsSeen(); }));

    StartService();
    Play("wait hidden serviceBar within 30\nwait shown penupdateBtn");
    EXPECT_TRUE(WaitUntil([&] { return !BarIsSeen(); }));

    KillService();
    Play("wait shown serviceBar within 30\nwait shown penupdateBtn");
    EXPECT_TRUE(WaitUntil([&] { return BarIsSeen(); }));
    StartService();
    Play("wait hidden serviceBar within 30");
    EXPECT_TRUE(WaitUntil([&] { return !BarIsSeen(); }));
    m_host->End();
}

class CloseTest : public WindowE2ETest {
protected:
    void OpenPage() {
        constexpr std::size_t kLong = 10 * 1000 * 1000;  // [bytes] runs until the test's end
        AddAccessory("pen", kLong);
        StartService({"--rate", kSlowRate});
        OpenWindow({}, 1, "pen");
    }

    void OpenPageAndStartAnUpdate() {
        OpenPage();
        ClickOn("penupdateBtn");
        Play("wait running 1");
    }

    void AskToClose() {
        m_hands.CloseWindow(kTitle);
        Play("wait shown closeQuestion");
    }

    void ExpectEnd() { EXPECT_EQ(m_host->Program().WaitForEnd(), 0) << m_host->Transcript() << m_host->Log(); }
};

TEST_F(CloseTest, WithoutARunningUpdateTheWindowClosesAtOnce) {
    OpenPage();
    m_hands.CloseWindow(kTitle);
    ExpectEnd();
    EXPECT_FALSE(m_hands.WindowExists(kTitle));
}

TEST_F(CloseTest, WhileAnUpdateRunsClosingIsAskedForAndEscapeKeepsTheWindow) {
    OpenPageAndStartAnUpdate();
    AskToClose();
    Play("wait focus keepOpen");
    m_hands.Key("Escape");
    Play("wait hidden closeQuestion\nwait running 1");
    m_host->End();
}

TEST_F(CloseTest, KeepOpenKeepsTheWindow) {
    OpenPageAndStartAnUpdate();
    AskToClose();
    ClickOn("keepOpen");
    Play("wait hidden closeQuestion\nwait running 1");
    ClickOn("penpulldown");
    Play("wait shown pendevInfo");
    m_host->End();
}

TEST_F(CloseTest, WhatLiesBehindTheQuestionTakesNoInput) {
    OpenPageAndStartAnUpdate();
    AskToClose();
    ClickOn("navAbout");
    MoveFocus("Tab", {"closeAnyway", "keepOpen"});  // seen after the click
    Play("wait hidden aboutView\nwait shown closeQuestion");
    m_hands.Key("Return");
    Play("wait hidden closeQuestion");
    m_host->End();
}

TEST_F(CloseTest, CloseAnywayEndsTheHostWhileTheServiceGoesOn) {
    OpenPageAndStartAnUpdate();
    AskToClose();
    ClickOn("closeAnyway");
    ExpectEnd();
    EXPECT_FALSE(m_hands.WindowExists(kTitle));
    EXPECT_THAT(ServiceLog(), Not(HasSubstr("pen: paused")));
}

TEST_F(CloseTest, ASignalEndsTheHostAlsoWhileAnUpdateRuns) {
    OpenPageAndStartAnUpdate();
    m_host->Program().AskToEnd();
    ExpectEnd();
    EXPECT_THAT(m_host->Transcript(), HasSubstr("stopped\n"));
}

}  // namespace
}  // namespace e2e
