// A list that is longer than its window, by wheel, thumb and keyboard.

#include "window_e2e_test.h"

namespace e2e {
namespace {

class ScrollTest : public WindowE2ETest {
protected:
    static constexpr int kRows = 30;
    static inline const std::string kFirst = "key-0hor";
    static inline const std::string kLast = "key-29hor";

    void OpenList() {
        for (int i = 0; i < kRows; ++i) AddAccessory("key-" + std::to_string(i), 1000);
        StartService();
        OpenWindow({}, kRows, "key-29");
        Play("wait shown accessoriesView");
        m_top = Top(kFirst);
        m_view = m_host->Where("accessoriesView");
        ASSERT_FALSE(IsInView(kLast));
    }

    int Top(const std::string& row) { return m_host->Where(row).y; }
    int Scrolled() { return m_top - Top(kFirst); }
    bool IsInView(const std::string& row) {
        const Place place = m_host->Where(row);
        return place.y >= m_view.y && place.y + place.height <= m_view.y + m_view.height;
    }
    [[nodiscard]] bool ScrollsTo(int distance) {
        return WaitUntil([&] { return Scrolled() == distance; });
    }
    [[nodiscard]] bool ScrollsToTheEnd() {
        constexpr int kBelow = 24;  // [device px] between the page and the end of what scrolls
        return WaitUntil([&] {
            const Place page = m_host->Where("page");
            return page.y + page.height + kBelow == m_view.y + m_view.height;
        });
    }

    int m_top = 0;  // of the first row, at rest
    Place m_view;
};

TEST_F(ScrollTest, TheWheelMovesTheList) {
    constexpr int kNotch = 60;  // [device px] of the list at 100 percent
    OpenList();
    m_hands.MoveTo(m_view.x + m_view.width / 2, m_view.y + m_view.height / 2);
    m_hands.Wheel(3);
    EXPECT_TRUE(ScrollsTo(3 * kNotch)) << Scrolled();
    m_hands.Wheel(-2);
    EXPECT_TRUE(ScrollsTo(kNotch)) << Scrolled();
    m_hands.Wheel(-2);
    EXPECT_TRUE(ScrollsTo(0)) << Scrolled();
    m_host->End();
}

TEST_F(ScrollTest, TheWheelBesideTheListMovesNothing) {
    OpenList();
    PointAt("navAbout");
    m_hands.Wheel(3);
    ClickOn("key-0pulldown");  // seen after the wheel
    Play("wait shown key-0devInfo");
    EXPECT_EQ(Scrolled(), 0);
    m_host->End();
}

TEST_F(ScrollTest, TheThumbIsDragged) {
    constexpr int kFromTheEdge = 6;  // [device px] the middle of the bar
    constexpr int kGrip = 12;        // [device px] within the thumb, from the list's top
    OpenList();
    const int x = m_view.x + m_view.width - kFromTheEdge;
    m_hands.MoveTo(x, m_view.y + kGrip);
    m_hands.Press();
    m_hands.MoveTo(x, m_view.y + kGrip + 100);
    ASSERT_TRUE(WaitUntil([&] { return Scrolled() > 100; })) << Scrolled();
    EXPECT_FALSE(IsInView(kLast));
    m_hands.MoveTo(x - 300, m_view.y + m_view.height + 50);  // beside the window the thumb still follows
    ASSERT_TRUE(ScrollsToTheEnd()) << Scrolled();
    const int end = Scrolled();
    m_hands.Release();
    m_hands.MoveTo(x, m_view.y + kGrip);
    ClickOn("navAbout");  // seen after the pointer
    Play("wait shown aboutView");
    ClickOn("navAccessories");
    Play("wait shown accessoriesView");
    EXPECT_EQ(Scrolled(), end);
    m_host->End();
}

TEST_F(ScrollTest, TheListStaysWhereItIsWhileAnotherPageIsShown) {
    OpenList();
    m_hands.Key("End");
    ASSERT_TRUE(ScrollsToTheEnd()) << Scrolled();
    const int end = Scrolled();
    ClickOn("navAbout");
    Play("wait shown aboutView");
    ClickOn("navAccessories");
    Play("wait shown accessoriesView");
    EXPECT_EQ(Scrolled(), end);
    m_host->End();
}

TEST_F(ScrollTest, KeysMoveTheList) {
    constexpr int kLine = 40;     // [device px] at 100 percent
    constexpr int kOverlap = 40;  // [device px] that stays in sight from page to page
    OpenList();
    m_hands.Key("Down");
    EXPECT_TRUE(ScrollsTo(kLine)) << Scrolled();
    m_hands.Key("Up");
    EXPECT_TRUE(ScrollsTo(0)) << Scrolled();
    m_hands.Key("Page_Down");
    EXPECT_TRUE(ScrollsTo(m_view.height - kOverlap)) << Scrolled();
    m_hands.Key("Page_Up");
    EXPECT_TRUE(ScrollsTo(0)) << Scrolled();
    m_hands.Key("End");
    EXPECT_TRUE(ScrollsToTheEnd()) << Scrolled();
    m_hands.Key("Home");
    EXPECT_TRUE(ScrollsTo(0)) << Scrolled();
    m_host->End();
}

TEST_F(ScrollTest, WhatTheFocusComesToIsScrolledIntoView) {
    OpenList();
    m_hands.Key("shift+Tab");
    Play("wait focus key-29pulldown");
    EXPECT_TRUE(WaitUntil([&] { return IsInView("key-29pulldown"); })) << Scrolled();
    EXPECT_GT(Scrolled(), 0);
    m_hands.Key("Return");
    Play("wait shown key-29devInfo");
    m_host->End();
}

}  // namespace
}  // namespace e2e
