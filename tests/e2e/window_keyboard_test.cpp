// The page by keyboard only.

#include "window_e2e_test.h"

namespace e2e {
namespace {

using KeyboardTest = ThreeRowsTest;

TEST_F(KeyboardTest, AllUpdatesAreDoneByKeyboardAlone) {
    OpenPage();
    MoveFocus("Tab", {"navAccessories", "navAbout", "penupdateBtn"});
    m_hands.Key("Return");
    Play("wait running 1\nwait percent penprogress 5");
    MoveFocus("Tab", {"penstopBtn"});
    m_hands.Key("space");
    Play("wait text penprogress \"Resume\"\nwait running 0");
    m_hands.Key("Return");
    Play("wait running 1\nwait hidden penhor within 60\nwait running 0");

    MoveFocus("Tab", {"dockupdateBtn"});
    m_hands.Key("space");
    Play("wait text dockprogress \"Try again\" within 60\nwait running 0");
    MoveFocus("Tab", {"dockstopBtn"});
    Play("wait tip dockstopBtn");
    m_hands.Key("Return");
    Play("wait running 1\nwait hidden dockhor within 60\nwait running 0");

    MoveFocus("Tab", {"mouseupdateBtn", "mousepulldown"});
    MoveFocus("shift+Tab", {"mouseupdateBtn"});
    m_hands.Key("Return");
    Play("wait hidden mousehor within 60\nwait nothing-left\nwait shown upToDateView");
    for (const char* key : {"pen", "dock", "mouse"}) EXPECT_EQ(ReadFile(Arrived(key)), PackageContent(key));
    m_host->End();
}

TEST_F(KeyboardTest, TheTipOfARefusalIsShownForTheFocusAndEscapeTakesItAway) {
    OpenPage();
    m_companion.Start();
    MoveFocus("shift+Tab", {"mousepulldown", "mouseupdateBtn"});
    m_hands.Key("Return");
    Play("wait tooltip mouseupdateBtn \"Close the app of Drawing Pen before updating.\"\nwait tip mouseupdateBtn");
    const auto withTip = m_hands.Screenshot().pixels;
    m_hands.Key("Escape");
    EXPECT_TRUE(WaitUntil([&] { return !m_host->Holds("tip mouseupdateBtn"); }));
    EXPECT_TRUE(WaitUntil([&] { return m_hands.Screenshot().pixels != withTip; }));
    Play("wait shown mouseupdateBtn\nwait focus mouseupdateBtn\nwait running 0");
    m_companion.Stop();
    m_hands.Key("space");
    Play("wait running 1\nwait hidden mousehor within 60");
    m_host->End();
}

TEST_F(KeyboardTest, ThePullDownOpensAndClosesARow) {
    OpenPage();
    MoveFocus("Tab", {"navAccessories", "navAbout", "penupdateBtn", "penpulldown"});
    m_hands.Key("space");
    Play("wait shown pendevInfo");
    m_hands.Key("Return");
    Play("wait hidden pendevInfo");
    m_host->End();
}

TEST_F(KeyboardTest, TheFocusGoesRoundInBothDirections) {
    OpenPage();
    const std::vector<std::string> all = {"navAccessories", "navAbout",      "penupdateBtn",
                                          "penpulldown",    "dockupdateBtn", "dockpulldown",
                                          "mouseupdateBtn", "mousepulldown", "navAccessories"};
    MoveFocus("Tab", all);
    MoveFocus("shift+Tab", {all.rbegin() + 1, all.rend()});
    m_host->End();
}

}  // namespace
}  // namespace e2e
