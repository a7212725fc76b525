#include "duilib/scroll_view.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {
namespace {

using std::chrono::milliseconds;

// A view of 400 x 300 over ten buttons of 100 each.
class ScrollViewTest : public WindowTest<CScrollViewUI> {
protected:
    ScrollViewTest() {
        auto* const column = Add<CVerticalLayoutUI>();
        for (int i = 0; i < 10; ++i) buttons.push_back(Add<CButtonUI>({{L"height", L"100"}}, column));
    }

    // Lets time pass until nothing moves any more.
    void Settle() {
        CPaintManagerUI::TimePoint now{std::chrono::hours(1)};
        for (int frame = 0; frame < 600; ++frame, now += milliseconds(16)) {
            if (!window.Tick(now)) return;
        }
        ADD_FAILURE() << "it does not come to rest";
    }
    int TopOf(int button) { return buttons[static_cast<std::size_t>(button)]->GetPos().top; }

    std::vector<CButtonUI*> buttons;
};

TEST_F(ScrollViewTest, ContentThatIsHigherThanTheViewCanBeMoved) {
    window.Layout();
    EXPECT_EQ(root->GetScrollRange(), 700);
    EXPECT_EQ(TopOf(0), 0);
    root->ScrollTo(250, false);
    EXPECT_EQ(TopOf(0), -250);
    EXPECT_EQ(TopOf(3), 50);
}

TEST_F(ScrollViewTest, ScrollingEndsAtBothEnds) {
    root->ScrollTo(5000, false);
    EXPECT_EQ(root->GetScrollPos(), 700);
    root->ScrollTo(-5, false);
    EXPECT_EQ(root->GetScrollPos(), 0);
}

TEST_F(ScrollViewTest, TheWheelMovesSmoothlyAndComesToRest) {
    EXPECT_TRUE(window.MouseWheel({200, 100}, 2));
    EXPECT_EQ(root->GetScrollPos(), 0);
    const auto next = window.Tick(CPaintManagerUI::TimePoint(std::chrono::hours(1)));
    ASSERT_TRUE(next);
    EXPECT_GT(root->GetScrollPos(), 0);
    EXPECT_LT(root->GetScrollPos(), 120);
    Settle();
    EXPECT_EQ(root->GetScrollPos(), 120);
    EXPECT_EQ(TopOf(0), -120);
}

TEST_F(ScrollViewTest, NotchesAddUpWhileItMoves) {
    window.MouseWheel({200, 100}, 1);
    window.MouseWheel({200, 100}, 1);
    window.MouseWheel({200, 100}, -0.5);
    Settle();
    EXPECT_EQ(root->GetScrollPos(), 90);
}

TEST_F(ScrollViewTest, AViewThatShowsEverythingDoesNotMove) {
    window.SetClientSize({400, 1200});
    EXPECT_FALSE(window.MouseWheel({200, 100}, 1));
    EXPECT_FALSE(window.KeyDown(DuiKey::kPageDown));
    EXPECT_EQ(root->GetScrollRange(), 0);
}

TEST_F(ScrollViewTest, KeysMoveByLinesPagesAndToTheEnds) {
    const auto after = [this](DuiKey key) {
        EXPECT_TRUE(window.KeyDown(key));
        Settle();
        return root->GetScrollPos();
    };
    EXPECT_EQ(after(DuiKey::kDown), 40);
    EXPECT_EQ(after(DuiKey::kPageDown), 300);
    EXPECT_EQ(after(DuiKey::kUp), 260);
    EXPECT_EQ(after(DuiKey::kPageUp), 0);
    EXPECT_EQ(after(DuiKey::kEnd), 700);
    EXPECT_EQ(after(DuiKey::kHome), 0);
}

TEST_F(ScrollViewTest, TabShowsTheButtonThatGetsTheFocus) {
    for (int i = 0; i < 4; ++i) window.KeyDown(DuiKey::kTab);
    Settle();
    EXPECT_EQ(window.GetFocus(), buttons[3]);
    EXPECT_EQ(TopOf(3), 200);  // as little as shows it whole
    window.KeyDown(DuiKey::kTab);
    window.KeyDown(DuiKey::kShiftTab);
    window.KeyDown(DuiKey::kShiftTab);
    window.KeyDown(DuiKey::kShiftTab);
    window.KeyDown(DuiKey::kShiftTab);
    Settle();
    EXPECT_EQ(window.GetFocus(), buttons[0]);
    EXPECT_EQ(TopOf(0), 0);
}

TEST_F(ScrollViewTest, TheBarIsDragged) {
    window.ButtonDown({396, 10});
    window.MouseMove({396, 150});
    EXPECT_GT(root->GetScrollPos(), 300);
    window.MouseMove({396, 1000});
    EXPECT_EQ(root->GetScrollPos(), 700);
    EXPECT_FALSE(window.ButtonUp({396, 1000}));
    window.MouseMove({396, 10});
    EXPECT_EQ(root->GetScrollPos(), 700);
}

TEST_F(ScrollViewTest, APressBesideTheThumbBringsItThere) {
    window.ButtonDown({396, 290});
    EXPECT_EQ(root->GetScrollPos(), 700);
    window.ButtonUp({396, 290});
}

TEST_F(ScrollViewTest, ContentThatShrinksIsMovedBackIntoTheView) {
    root->ScrollTo(700, false);
    for (int i = 5; i < 10; ++i) buttons[static_cast<std::size_t>(i)]->SetVisible(false);
    window.Layout();
    EXPECT_EQ(root->GetScrollPos(), 200);
    EXPECT_EQ(TopOf(4), 200);
}

TEST_F(ScrollViewTest, PositionsAreDesignPixelsAtEveryScale) {
    window.SetClientSize({800, 600});
    CResourceManager::GetInstance()->SetScale(200);
    root->ScrollTo(50, false);
    EXPECT_EQ(TopOf(0), -100);
    EXPECT_EQ(root->GetScrollRange(), 700);
}

TEST_F(ScrollViewTest, AFreelyPlacedChildMovesWithTheContent) {
    auto* const free = Add<CLabelUI>({{L"pos", L"10,1100,50,1200"}});
    window.Layout();
    EXPECT_EQ(root->GetScrollRange(), 900);
    root->ScrollTo(900, false);
    EXPECT_EQ(free->GetPos(), (CDuiRect{10, 200, 50, 300}));
}

TEST_F(ScrollViewTest, TheBarFitsTheContentAlsoWithinAnInset) {
    root->SetAttribute(L"inset", L"0,100,0,100");
    window.Layout();
    EXPECT_EQ(root->GetScrollRange(), 900);
    window.ButtonDown({396, 10});
    window.MouseMove({396, 1000});
    EXPECT_EQ(root->GetScrollPos(), 900);
    window.MouseMove({396, 10});
    EXPECT_EQ(root->GetScrollPos(), 0);
    window.ButtonUp({396, 10});
}

TEST_F(ScrollViewTest, WhatIsScrolledOutOfTheViewCannotBeClicked) {
    root->ScrollTo(150, false);
    EXPECT_EQ(window.FindControl(CDuiPoint{100, 10}), buttons[1]);
    EXPECT_EQ(window.FindControl(CDuiPoint{100, -100}), nullptr);
}

TEST_F(ScrollViewTest, AViewThatGoesWhileItMovesIsForgotten) {
    window.MouseWheel({200, 100}, 1);
    window.AttachRoot(new CContainerUI);
    EXPECT_FALSE(window.Tick(CPaintManagerUI::TimePoint(std::chrono::hours(1))));
}

}  // namespace
}  // namespace DuiLib
