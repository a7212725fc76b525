// Who hears of a click, what its handler may do, and on which thread.
#include <functional>
#include <future>
#include <memory>
#include <thread>

#include "kernel/ui_turn.h"
#include "support/toolkit/click_pump.h"

namespace DuiLib {

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
    {
        const kernel::UiTurnPause pause;
        EXPECT_THROW(Click({10, 10}), std::bad_function_call);
        EXPECT_FALSE(kernel::UiTurn::IsHeld());
    }
    pump.onClick = {};
    EXPECT_TRUE(Click(button));
    root->Remove(button);
}

// ---- Threads

TEST_F(PaintManagerTest, InputHoldsTheTurn) {
    AddButton(L"0,0,100,100");
    bool held = false;
    pump.onClick = [&](TNotifyUI&) { held = kernel::UiTurn::IsHeld(); };
    const kernel::UiTurnPause pause;
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
    {
        const kernel::UiTurnPause pause;
        std::thread other([&] { Click({10, 10}); });
        firstWaits.get_future().wait();
        std::thread third([&] { Click({110, 10}); });
        other.join();
        firstMayEnd.set_value();
        third.join();
    }
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
    {
        const kernel::UiTurnPause pause;
        for (std::thread& thread : threads) thread.join();
    }
    EXPECT_EQ(root->GetCount(), 4);
}

}  // namespace DuiLib
