#include "virtual_display.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <string>

#include "bare_window.h"
#include "pointer_and_keys.h"

namespace test_display {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr ScreenSize kScreen{640, 480};
constexpr ScreenPoint kOrigin = BareWindow::kOrigin;
constexpr const char* kTitle = "Accessories – test";

// The words of what a call throws.
std::string WhatIsThrownBy(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

class VirtualDisplayTest : public testing::Test {
protected:
    VirtualDisplayTest() {
        m_window.Show();
        m_hands.SetInputFocus(kTitle);
        m_window.EventsUntil("focus");
    }

    VirtualDisplay m_display{kScreen};
    BareWindow m_window{m_display.Name(), kTitle};
    PointerAndKeys m_hands{m_display.Name()};
};

TEST_F(VirtualDisplayTest, AClickMovesPressesAndReleasesInTheWindow) {
    m_hands.Click(60, 55);
    EXPECT_THAT(m_window.EventsUntil("release 1 10,15"), ElementsAre("move 10,15", "press 1 10,15", "release 1 10,15"));
}

TEST_F(VirtualDisplayTest, AButtonStaysDownWhileThePointerMoves) {
    m_hands.MoveTo(60, 55);
    m_hands.Press();
    m_hands.MoveTo(70, 56);
    m_hands.Release();
    EXPECT_THAT(m_window.EventsUntil("release 1 20,16"),
                ElementsAre("move 10,15", "press 1 10,15", "move 20,16", "release 1 20,16"));
}

TEST_F(VirtualDisplayTest, TheWheelTurnsDownForNotchesAboveZero) {
    m_hands.MoveTo(60, 55);
    m_hands.Wheel(2);
    m_hands.Wheel(-1);
    EXPECT_THAT(m_window.EventsUntil("release 4 10,15"),
                ElementsAre("move 10,15", "press 5 10,15", "release 5 10,15", "press 5 10,15", "release 5 10,15",
                            "press 4 10,15", "release 4 10,15"));
}

TEST_F(VirtualDisplayTest, KeysArriveByTheirNames) {
    for (const char* name : {"Tab", "Return", "space", "Escape", "Page_Down", "Down", "Home"}) m_hands.Key(name);
    // X calls Page_Down by its other name.
    EXPECT_THAT(m_window.EventsUntil("key Home"),
                ElementsAre("key Tab", "key Return", "key space", "key Escape", "key Next", "key Down", "key Home"));
}

TEST_F(VirtualDisplayTest, ModifiersArePressedBeforeTheKeyAndReleasedAfterIt) {
    m_hands.Key("shift+Tab");
    m_hands.Key("ctrl+alt+Home");
    m_hands.Key("a");
    EXPECT_THAT(m_window.EventsUntil("key a"), ElementsAre("key Shift_L", "key shift Tab", "key Control_L",
                                                           "key ctrl Alt_L", "key ctrl alt Home", "key a"));
}

TEST_F(VirtualDisplayTest, WhatNeedsShiftGetsItOnce) {
    m_hands.Key("ISO_Left_Tab");
    m_hands.Key("A");
    m_hands.Key("shift+A");
    m_hands.Key("b");
    EXPECT_THAT(m_window.EventsUntil("key b"), ElementsAre("key Shift_L", "key shift Tab", "key Shift_L", "key shift a",
                                                           "key Shift_L", "key shift a", "key b"));
}

TEST_F(VirtualDisplayTest, KeysAndModifiersThatDoNotExistAreNamed) {
    EXPECT_THAT(WhatIsThrownBy([&] { m_hands.Key("Tabulator"); }),
                AllOf(HasSubstr(m_display.Name()), HasSubstr("there is no key \"Tabulator\"")));
    EXPECT_THAT(WhatIsThrownBy([&] { m_hands.Key("hyper+Tab"); }), HasSubstr("\"hyper\" is no modifier"));
}

TEST_F(VirtualDisplayTest, AWindowIsAskedToClose) {
    m_hands.CloseWindow(kTitle);
    EXPECT_THAT(m_window.EventsUntil("close"), ElementsAre("close"));
}

TEST_F(VirtualDisplayTest, AWindowIsFoundByItsTitleWhileItIsShown) {
    EXPECT_TRUE(m_hands.WindowExists(kTitle));
    EXPECT_FALSE(m_hands.WindowExists("Accessories"));
    EXPECT_EQ(m_hands.WindowOrigin(kTitle).x, kOrigin.x);
    EXPECT_EQ(m_hands.WindowOrigin(kTitle).y, kOrigin.y);
    m_window.Hide();
    EXPECT_FALSE(m_hands.WindowExists(kTitle));
    EXPECT_THAT(WhatIsThrownBy([&] { m_hands.CloseWindow(kTitle); }),
                AllOf(HasSubstr(m_display.Name()), HasSubstr(kTitle)));
}

TEST_F(VirtualDisplayTest, TheFocusGoesToTheWindowThatIsNamed) {
    BareWindow other(m_display.Name(), "Other");
    other.Show();
    m_hands.SetInputFocus("Other");
    m_hands.Key("Return");
    EXPECT_THAT(other.EventsUntil("key Return"), ElementsAre("focus", "key Return"));
}

TEST_F(VirtualDisplayTest, AScreenshotShowsWhatIsPainted) {
    const ScreenImage shot = m_hands.Screenshot();
    EXPECT_EQ(shot.width, kScreen.width);
    EXPECT_EQ(shot.height, kScreen.height);
    EXPECT_EQ(shot.Pixel(kOrigin.x, kOrigin.y), BareWindow::kColour);
    EXPECT_EQ(shot.Pixel(kOrigin.x + BareWindow::kSize.width - 1, kOrigin.y + BareWindow::kSize.height - 1),
              BareWindow::kColour);
    EXPECT_EQ(shot.Pixel(kOrigin.x - 1, kOrigin.y), 0u);
    EXPECT_EQ(shot.Pixel(kOrigin.x + BareWindow::kSize.width, kOrigin.y), 0u);
    EXPECT_THROW(shot.Pixel(kScreen.width, 0), std::out_of_range);
}

TEST(VirtualDisplayAlone, ItTellsTheResolutionThatWasAskedFor) {
    const VirtualDisplay display({800, 600}, 192);
    EXPECT_NEAR(BareWindow(display.Name(), kTitle).DotsPerInch(), 192, 2);
}

TEST(VirtualDisplayAlone, TwoStandBesideEachOther) {
    const VirtualDisplay first(kScreen);
    const VirtualDisplay second(kScreen);
    EXPECT_NE(first.Name(), second.Name());
    BareWindow window(second.Name(), kTitle);
    window.Show();
    EXPECT_TRUE(PointerAndKeys(second.Name()).WindowExists(kTitle));
    EXPECT_FALSE(PointerAndKeys(first.Name()).WindowExists(kTitle));
}

TEST(VirtualDisplayAlone, ADisplayThatHasGoneIsNamed) {
    std::optional<VirtualDisplay> display(kScreen);
    const std::string name = display->Name();
    PointerAndKeys hands(name);
    hands.MoveTo(1, 1);
    display.reset();
    EXPECT_EQ(WhatIsThrownBy([&] { hands.MoveTo(2, 2); }),
              "display " + name + ": moving the pointer: the server has gone");
    EXPECT_EQ(WhatIsThrownBy([&] { hands.Screenshot(); }),
              "display " + name + ": taking a screenshot: the server has gone");
    EXPECT_EQ(WhatIsThrownBy([&] { hands.WindowExists(kTitle); }),
              "display " + name + ": listing windows: the server has gone");
    EXPECT_EQ(WhatIsThrownBy([&] { PointerAndKeys late(name); }),
              "display " + name + ": connecting: no server answers");
}

TEST(VirtualDisplayAlone, AMissingServerIsNamed) {
    const std::string path = std::getenv("PATH");
    setenv("PATH", "/nowhere", 1);
    EXPECT_THAT(WhatIsThrownBy([] { VirtualDisplay display(kScreen); }),
                AllOf(HasSubstr("Xvfb does not come up: "), HasSubstr("No such file")));
    setenv("PATH", path.c_str(), 1);
}

}  // namespace
}  // namespace test_display
