#include "duilib/paint_manager.h"

#include "support/toolkit/click_pump.h"

namespace DuiLib {

// ---- The tree

TEST_F(PaintManagerTest, ANewRootReplacesAndDeletesTheOneBefore) {
    Add<>({{L"name", L"old"}});
    auto* const next = Make<CContainerUI>();
    window.AttachRoot(next);
    EXPECT_EQ(window.GetRoot(), next);
    EXPECT_EQ(window.FindControl(L"old"), nullptr);
    window.AttachRoot(next);
    EXPECT_EQ(window.GetRoot(), next);
    window.AttachRoot(nullptr);
    EXPECT_EQ(window.GetRoot(), nullptr);
    EXPECT_EQ(window.FindControl({1, 1}), nullptr);
}

TEST_F(PaintManagerTest, WhatHasAPlaceAlreadyDoesNotBecomeTheRoot) {
    auto* const child = Add<CContainerUI>();
    window.AttachRoot(child);
    EXPECT_EQ(window.GetRoot(), root);
    CPaintManagerUI other;
    other.AttachRoot(root);
    EXPECT_EQ(other.GetRoot(), nullptr);
}

TEST_F(PaintManagerTest, TheRootFillsTheWindowUnlessItsSizeIsFixed) {
    EXPECT_EQ(root->GetPos(), (CDuiRect{0, 0, 400, 300}));
    window.SetClientSize({200, 100});
    EXPECT_EQ(root->GetPos(), (CDuiRect{0, 0, 200, 100}));
    root->SetFixedHeight(50);
    EXPECT_EQ(root->GetPos(), (CDuiRect{0, 0, 200, 50}));
    EXPECT_EQ(window.GetClientSize(), (CDuiSize{200, 100}));
}

TEST_F(PaintManagerTest, ARootThatIsShownAgainIsLaidOut) {
    auto* const child = Add<>();
    root->SetVisible(false);
    window.SetClientSize({200, 100});
    window.Layout();
    root->SetVisible(true);
    EXPECT_EQ(child->GetPos(), (CDuiRect{0, 0, 200, 100}));
}

TEST_F(PaintManagerTest, ThereIsAPaintDC) { EXPECT_NE(window.GetPaintDC(), nullptr); }

// ---- Where a point lands

TEST_F(PaintManagerTest, TheButtonThatIsDrawnLastTakesThePointer) {
    auto* const below = AddButton(L"0,0,100,100");
    auto* const above = AddButton(L"50,0,150,100");
    EXPECT_EQ(window.FindControl({10, 10}), below);
    EXPECT_EQ(window.FindControl({60, 10}), above);
    EXPECT_EQ(window.FindControl({100, 10}), above);
    EXPECT_EQ(window.FindControl({150, 10}), root) << "the right edge lies outside";
}

TEST_F(PaintManagerTest, ALabelOverAButtonLetsThePointerThrough) {
    auto* const button = AddButton(L"0,0,100,100");
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,200,100"}});
    EXPECT_EQ(window.FindControl({10, 10}), button);
    EXPECT_EQ(window.FindControl({110, 10}), label);
}

TEST_F(PaintManagerTest, HiddenAndDisabledThingsDoNotTakeThePointer) {
    auto* const below = AddButton(L"0,0,100,100");
    auto* const box = Add<CContainerUI>();
    auto* const above = AddButton(L"0,0,100,100", L"above", box);
    EXPECT_EQ(window.FindControl({10, 10}), above);
    above->SetEnabled(false);
    EXPECT_EQ(window.FindControl({10, 10}), below);
    above->SetEnabled(true);
    box->SetEnabled(false);
    EXPECT_EQ(window.FindControl({10, 10}), below);
    box->SetEnabled(true);
    box->SetVisible(false);
    EXPECT_EQ(window.FindControl({10, 10}), below);
    box->SetVisible(true);
    above->SetVisible(false);
    EXPECT_EQ(window.FindControl({10, 10}), below);
}

TEST_F(PaintManagerTest, ControlsEndAtTheEdgesOfWhatTheyLieIn) {
    auto* const box = Add<CContainerUI>({{L"pos", L"0,0,50,50"}});
    auto* const button = AddButton(L"0,0,100,100", L"button", box);
    EXPECT_EQ(window.FindControl({49, 49}), button);
    EXPECT_EQ(window.FindControl({60, 10}), root);
    EXPECT_EQ(window.FindControl({-1, 0}), nullptr);
    EXPECT_EQ(window.FindControl({400, 0}), nullptr);
}

TEST_F(PaintManagerTest, TheLayoutIsDoneBeforeAPointIsLookedUp) {
    auto* const button = AddButton(L"0,0,10,10");
    window.Layout();
    button->SetAttribute(L"pos", L"200,0,210,10");
    EXPECT_EQ(window.FindControl({205, 5}), button);
}

// ---- Pointer

TEST_F(PaintManagerTest, PressAndReleaseOnAButtonIsAClick) {
    auto* const button = AddButton(L"0,0,100,100");
    EXPECT_TRUE(window.ButtonDown({10, 20}));
    EXPECT_TRUE(window.ButtonUp({11, 21}));
    EXPECT_EQ(pump.clicks, 1);
    EXPECT_EQ(pump.last.type, L"click");
    EXPECT_EQ(pump.last.sender, button);
    EXPECT_EQ(pump.last.mouse.x, 11);
    EXPECT_EQ(pump.last.mouse.y, 21);
}

TEST_F(PaintManagerTest, OtherPressesAreNoClicks) {
    auto* const a = AddButton(L"0,0,100,100");
    AddButton(L"100,0,200,100");
    EXPECT_FALSE(window.ButtonUp({10, 10})) << "without a press";
    window.ButtonDown({10, 10});
    EXPECT_FALSE(window.ButtonUp({110, 10})) << "released on another button";
    window.ButtonDown({10, 10});
    EXPECT_FALSE(window.ButtonUp({300, 10})) << "released beside";
    EXPECT_FALSE(window.ButtonUp({10, 10})) << "released twice";
    EXPECT_FALSE(window.ButtonDown({300, 10})) << "no button there";
    EXPECT_FALSE(window.ButtonUp({10, 10}));
    window.ButtonDown({10, 10});
    a->SetEnabled(false);
    EXPECT_FALSE(window.ButtonUp({10, 10})) << "disabled meanwhile";
    a->SetEnabled(true);
    window.ButtonDown({10, 10});
    root->Remove(a);
    EXPECT_FALSE(window.ButtonUp({10, 10})) << "removed meanwhile";
    EXPECT_EQ(pump.clicks, 0);
}

TEST_F(PaintManagerTest, ThePointerHoversOverWhatItWasMovedTo) {
    auto* const button = AddButton(L"0,0,100,100");
    EXPECT_EQ(window.GetHovered(), nullptr);
    window.MouseMove({10, 10});
    EXPECT_EQ(window.GetHovered(), button);
    root->Remove(button);
    EXPECT_EQ(window.GetHovered(), nullptr);
    window.MouseMove({10, 10});
    EXPECT_EQ(window.GetHovered(), root);
    window.MouseMove({1000, 10});
    EXPECT_EQ(window.GetHovered(), nullptr);
}

// ---- Keyboard

TEST_F(PaintManagerTest, TabGoesThroughTheButtonsThatCanBeClicked) {
    auto* const a = AddButton(L"0,0,10,10");
    auto* const hidden = AddButton(L"10,0,20,10");
    auto* const disabled = AddButton(L"20,0,30,10");
    auto* const b = AddButton(L"30,0,40,10");
    hidden->SetVisible(false);
    disabled->SetEnabled(false);
    EXPECT_EQ(window.GetFocus(), nullptr);
    EXPECT_FALSE(window.KeyDown(DuiKey::kEnter));
    EXPECT_TRUE(window.KeyDown(DuiKey::kTab));
    EXPECT_EQ(window.GetFocus(), a);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), b);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), a);
    window.KeyDown(DuiKey::kShiftTab);
    EXPECT_EQ(window.GetFocus(), b);
    root->RemoveAll();
    EXPECT_EQ(window.GetFocus(), nullptr);
    EXPECT_FALSE(window.KeyDown(DuiKey::kTab));
}

TEST_F(PaintManagerTest, EnterAndSpaceClickTheFocusedButton) {
    auto* const button = AddButton(L"0,0,10,10");
    window.KeyDown(DuiKey::kShiftTab);
    EXPECT_TRUE(window.KeyDown(DuiKey::kEnter));
    EXPECT_TRUE(window.KeyDown(DuiKey::kSpace));
    EXPECT_EQ(pump.clicks, 2);
    EXPECT_EQ(pump.last.sender, button);
    button->SetVisible(false);
    EXPECT_FALSE(window.KeyDown(DuiKey::kSpace));
    EXPECT_EQ(pump.clicks, 2);
}

}  // namespace DuiLib
