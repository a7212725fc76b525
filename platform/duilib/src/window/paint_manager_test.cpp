#include "duilib/paint_manager.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <future>
#include <thread>

#include "kernel/ui_turn.h"
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

namespace {

// Does with each click what the test asks for.
class ClickPump : public CNotifyPump {
public:
    const DUI_MSGMAP* GetMessageMap() const override { return &s_map; }
    void OnClick(TNotifyUI& message) override {
        ++clicks;
        last = message;
        if (onClick) onClick(message);
    }

    std::function<void(TNotifyUI&)> onClick;
    TNotifyUI last;
    int clicks = 0;

private:
    static const DUI_MSGMAP_ENTRY s_entries[];
    static const DUI_MSGMAP s_map;
};

const DUI_MSGMAP_ENTRY ClickPump::s_entries[] = {{L"click", nullptr, &CNotifyPump::OnClick},
                                                 {nullptr, nullptr, nullptr}};
const DUI_MSGMAP ClickPump::s_map = {&CNotifyPump::s_messageMap, s_entries};

}  // namespace

class PaintManagerTest : public WindowTest<CContainerUI> {
protected:
    PaintManagerTest() { window.AddNotifyPump(&pump); }

    CButtonUI* AddButton(const wchar_t* pos, const wchar_t* name = L"button", CContainerUI* parent = nullptr) {
        return Add<CButtonUI>({{L"pos", pos}, {L"name", name}}, parent);
    }

    ClickPump pump;
};

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

// ---- Where notifications go

TEST_F(PaintManagerTest, TheNearestVirtualWindowGetsTheNotification) {
    ClickPump outer;
    ClickPump inner;
    pump.AddVirtualWnd(L"outer", &outer);
    pump.AddVirtualWnd(L"inner", &inner);
    auto* const row = Add<CContainerUI>({{L"virtualwnd", L"outer"}});
    auto* const part = Add<CContainerUI>({{L"virtualwnd", L"inner"}}, row);
    auto* const button = AddButton(L"0,0,10,10", L"x", part);
    window.SendNotify(button, L"click");
    EXPECT_EQ(inner.clicks, 1);
    EXPECT_EQ(inner.last.virtualWnd, L"inner");
    window.SendNotify(row, L"click");
    EXPECT_EQ(outer.clicks, 1);
    button->SetVirtualWnd(L"nobody");
    window.SendNotify(button, L"click");
    EXPECT_EQ(pump.clicks, 1) << "not registered: the page's own map";
    window.SendNotify(root, L"click");
    window.SendNotify(nullptr, L"click");
    EXPECT_EQ(pump.clicks, 3);
    EXPECT_EQ(pump.last.virtualWnd, L"");
}

TEST_F(PaintManagerTest, PumpsHearInTheOrderOfAddingAndOnceEach) {
    std::string order;
    ClickPump second;
    pump.onClick = [&](TNotifyUI&) { order += "1"; };
    second.onClick = [&](TNotifyUI&) { order += "2"; };
    window.AddNotifyPump(&second);
    window.AddNotifyPump(&pump);
    window.AddNotifyPump(nullptr);
    window.SendNotify(root, L"click");
    EXPECT_EQ(order, "12");
    window.RemoveNotifyPump(&pump);
    window.SendNotify(root, L"click");
    EXPECT_EQ(order, "122");
}

// ---- Handlers that change what they came from

TEST_F(PaintManagerTest, AHandlerMayRemoveTheSender) {
    auto* const button = AddButton(L"0,0,100,100");
    ClickPump second;
    window.AddNotifyPump(&second);
    pump.onClick = [&](TNotifyUI& message) {
        root->Remove(button);
        EXPECT_EQ(message.sender, nullptr) << "what is gone is not handed on";
    };
    EXPECT_TRUE(Click({10, 10}));
    EXPECT_EQ(second.clicks, 1);
    EXPECT_EQ(second.last.sender, nullptr);
}

TEST_F(PaintManagerTest, AHandlerMayRemoveTheWholePageOrReplaceTheRoot) {
    AddButton(L"0,0,100,100");
    pump.onClick = [&](TNotifyUI&) { root->RemoveAll(); };
    EXPECT_TRUE(Click({10, 10}));
    AddButton(L"0,0,100,100");
    pump.onClick = [&](TNotifyUI&) { window.AttachRoot(nullptr); };
    EXPECT_TRUE(Click({10, 10}));
    EXPECT_FALSE(Click({10, 10}));
    EXPECT_EQ(pump.clicks, 2);
}

TEST_F(PaintManagerTest, AHandlerMayTakePumpsAway) {
    ClickPump second;
    window.AddNotifyPump(&second);
    pump.onClick = [&](TNotifyUI&) {
        window.RemoveNotifyPump(&second);
        window.RemoveNotifyPump(&pump);
    };
    window.SendNotify(root, L"click");
    window.SendNotify(root, L"click");
    EXPECT_EQ(pump.clicks, 1);
    EXPECT_EQ(second.clicks, 0);
}

TEST_F(PaintManagerTest, AHandlerMayDestroyTheWindow) {
    auto other = std::make_unique<CPaintManagerUI>();
    other->SetClientSize({100, 100});
    other->AttachRoot(Make<CButtonUI>());
    ClickPump second;
    other->AddNotifyPump(&pump);
    other->AddNotifyPump(&second);
    pump.onClick = [&](TNotifyUI&) { other.reset(); };
    other->ButtonDown({10, 10});
    EXPECT_TRUE(other->ButtonUp({10, 10}));
    EXPECT_EQ(second.clicks, 0);
}

TEST_F(PaintManagerTest, AHandlerThatThrowsLeavesTheWindowUsable) {
    auto* const button = AddButton(L"0,0,100,100");
    pump.onClick = [](TNotifyUI&) { throw std::bad_function_call(); };
    EXPECT_THROW(Click({10, 10}), std::bad_function_call);
    EXPECT_FALSE(kernel::UiTurn::IsHeld());
    pump.onClick = {};
    EXPECT_TRUE(Click(button));
    root->Remove(button);
}

// ---- Threads

TEST_F(PaintManagerTest, InputHoldsTheTurn) {
    AddButton(L"0,0,100,100");
    bool held = false;
    pump.onClick = [&](TNotifyUI&) { held = kernel::UiTurn::IsHeld(); };
    Click({10, 10});
    EXPECT_TRUE(held);
    EXPECT_FALSE(kernel::UiTurn::IsHeld());
}

TEST_F(PaintManagerTest, AHandlerMayGiveTheTurnUpWhileAnotherThreadRemovesTheSender) {
    AddButton(L"0,0,100,100");
    std::promise<void> handlerWaits;
    std::promise<void> removed;
    std::thread other([&] {
        handlerWaits.get_future().wait();
        kernel::UiTurn turn;
        root->RemoveAll();
        auto* const button = new CButtonUI;
        button->SetName(L"next");
        root->Add(button);
        window.Layout();
        removed.set_value();
    });
    pump.onClick = [&](TNotifyUI& message) {
        EXPECT_NE(message.sender, nullptr);
        {
            kernel::UiTurnPause pause;
            handlerWaits.set_value();
            removed.get_future().wait();
        }
        EXPECT_EQ(message.sender, nullptr);
    };
    EXPECT_TRUE(Click({10, 10}));
    other.join();
    kernel::UiTurn turn;
    EXPECT_NE(window.FindControl(L"next"), nullptr);
}

TEST_F(PaintManagerTest, HandlersThatOverlapOnTwoThreadsEndInAnyOrder) {
    auto* const first = AddButton(L"0,0,100,100", L"first");
    auto* const second = AddButton(L"100,0,200,100", L"second");
    std::promise<void> firstWaits;
    std::promise<void> firstMayEnd;
    std::promise<void> secondWaits;
    pump.onClick = [&](TNotifyUI& message) {
        CControlUI* const sender = message.sender;
        kernel::UiTurnPause pause;
        if (sender == first) {
            firstWaits.set_value();
            secondWaits.get_future().wait();
            return;
        }
        secondWaits.set_value();
        firstMayEnd.get_future().wait();
    };
    std::thread other([&] { Click({10, 10}); });
    firstWaits.get_future().wait();
    std::thread third([&] { Click({110, 10}); });
    other.join();
    firstMayEnd.set_value();
    third.join();
    kernel::UiTurn turn;
    EXPECT_EQ(pump.clicks, 2);
    root->Remove(first);
    root->Remove(second);
}

TEST_F(PaintManagerTest, ManyThreadsChangeOnePageInTurns) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([this, t] {
            const std::wstring name = L"row" + std::to_wstring(t);
            for (int i = 0; i < 100; ++i) {
                {
                    kernel::UiTurn turn;
                    if (CControlUI* row = window.FindControl(name)) root->Remove(row);
                    auto* const row = Add<CLabelUI>({{L"text", L"text"}});
                    row->SetName(name);
                    row->GetHeight();
                }
                Click({i, i});
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(root->GetCount(), 4);
}

}  // namespace DuiLib
