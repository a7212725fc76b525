// A real window on the desktop that the test runs on: what it shows, and what it makes of the system's messages.
#include <windows.h>

#include <chrono>
#include <functional>
#include <thread>

#include "base/text.h"
#include "kernel/ui_turn.h"
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {
namespace {

constexpr const char* kTitle = "Window of the test \xC3\xA9";

class WindowOnDesktop : public WindowTest<CContainerUI> {
protected:
    void SetUp() override {
        std::string reason;
        ASSERT_TRUE(CWindowWnd::HasDisplay(reason)) << reason;
        root->SetAttribute(L"bkcolor", L"#FFFF0000");
        button = Add<CButtonUI>({{L"name", L"button"}, {L"pos", L"10,10,110,50"}, {L"bkcolor", L"#FF0000FF"}});
        shown = std::make_unique<CWindowWnd>(window, WindowOptions{kTitle, {400, 300}, {200, 100}, 100u});
        handle = ::FindWindowW(nullptr, base::WideFromUtf8(kTitle).c_str());
        ASSERT_TRUE(handle);
    }

    // Lets the window work until something is so; false when it does not come about.
    bool Until(const std::function<bool()>& isSo) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!isSo()) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            shown->RunOnce(std::chrono::milliseconds(20));
        }
        return true;
    }

    COLORREF ColorAt(CDuiPoint point) const {
        const HDC screen = ::GetDC(handle);
        const COLORREF color = ::GetPixel(screen, point.x, point.y);
        ::ReleaseDC(handle, screen);
        return color;
    }
    bool Shows(CDuiPoint point, COLORREF color) {
        return Until([&] { return ColorAt(point) == color; });
    }
    // The pointer itself, lest the system tells that it is elsewhere.
    bool MovePointer(CDuiPoint point) {
        const CDuiPoint origin = shown->GetOrigin();
        return Until([&] {
            ::SetCursorPos(origin.x + point.x, origin.y + point.y);
            return window.GetHovered() == window.FindControl(point);
        });
    }
    void Post(UINT message, WPARAM wide, CDuiPoint point) {
        ::PostMessageW(handle, message, wide, MAKELPARAM(point.x, point.y));
    }

    CButtonUI* button = nullptr;
    std::unique_ptr<CWindowWnd> shown;
    HWND handle = nullptr;
};

class Clicks : public CNotifyPump {
public:
    explicit Clicks(int& count) : m_count(count) {}
    const DUI_MSGMAP* GetMessageMap() const override { return &s_map; }
    void OnClick(TNotifyUI&) override { ++m_count; }

private:
    static constexpr DUI_MSGMAP_ENTRY s_entries[] = {{kNotifyClick, nullptr, &CNotifyPump::OnClick},
                                                     {nullptr, nullptr, nullptr}};
    static const DUI_MSGMAP s_map;
    int& m_count;
};
const DUI_MSGMAP Clicks::s_map = {nullptr, Clicks::s_entries};

TEST_F(WindowOnDesktop, ItShowsTheTreeAndWhatChangesInIt) {
    EXPECT_TRUE(Shows({200, 100}, RGB(255, 0, 0)));
    EXPECT_TRUE(Shows({50, 30}, RGB(0, 0, 255)));
    button->SetAttribute(L"bkcolor", L"#FF00FF00");
    EXPECT_TRUE(Shows({50, 30}, RGB(0, 255, 0)));
}

TEST_F(WindowOnDesktop, ItsContentHasTheSizeThatWasAskedForAndFollowsTheWindow) {
    EXPECT_EQ(window.GetClientSize(), (CDuiSize{400, 300}));
    RECT outer{};
    ::GetWindowRect(handle, &outer);
    ::SetWindowPos(handle, nullptr, 0, 0, outer.right - outer.left + 50, outer.bottom - outer.top + 20, SWP_NOMOVE);
    EXPECT_TRUE(Until([this] { return window.GetClientSize() == CDuiSize{450, 320}; }));
}

TEST_F(WindowOnDesktop, ItBecomesNoSmallerThanItsSmallestSize) {
    ::SetWindowPos(handle, nullptr, 0, 0, 10, 10, SWP_NOMOVE);
    EXPECT_TRUE(Until([this] { return window.GetClientSize() == CDuiSize{200, 100}; }));
}

TEST_F(WindowOnDesktop, AWindowThatIsLargerThanTheDesktopIsMadeToFit) {
    CPaintManagerUI large;
    const CWindowWnd huge(large, WindowOptions{"huge", {90000, 90000}, {80000, 80000}, 100u});
    EXPECT_LE(large.GetClientSize().cx, ::GetSystemMetrics(SM_CXSCREEN));
    EXPECT_LE(large.GetClientSize().cy, ::GetSystemMetrics(SM_CYSCREEN));
}

TEST_F(WindowOnDesktop, PointerMessagesPressTheButtonUnderIt) {
    button->SetAttribute(L"pushedbkcolor", L"#FF00FF00");
    ASSERT_TRUE(MovePointer({50, 30}));
    Post(WM_LBUTTONDOWN, MK_LBUTTON, {50, 30});
    EXPECT_TRUE(Shows({50, 30}, RGB(0, 255, 0)));
    EXPECT_EQ(::GetCapture(), handle);
    Post(WM_LBUTTONUP, 0, {50, 30});
    EXPECT_TRUE(Until([this] { return window.GetFocus() == button && ::GetCapture() == nullptr; }));
    EXPECT_TRUE(Shows({50, 30}, RGB(0, 0, 255)));
}

TEST_F(WindowOnDesktop, ThePointerThatAnotherWindowTakesLetsTheButtonGo) {
    button->SetAttribute(L"pushedbkcolor", L"#FF00FF00");
    ASSERT_TRUE(MovePointer({50, 30}));
    Post(WM_LBUTTONDOWN, MK_LBUTTON, {50, 30});
    EXPECT_TRUE(Shows({50, 30}, RGB(0, 255, 0)));
    ::ReleaseCapture();
    EXPECT_TRUE(Shows({50, 30}, RGB(0, 0, 255)));
}

TEST_F(WindowOnDesktop, ThePointerThatLeavesIsOverNothing) {
    ASSERT_TRUE(MovePointer({50, 30}));
    RECT outer{};
    ::GetWindowRect(handle, &outer);
    ::SetCursorPos(outer.left > 0 ? 0 : outer.right + 5, outer.top > 0 ? 0 : outer.bottom + 5);
    EXPECT_TRUE(Until([this] { return window.GetHovered() == nullptr; }));
}

TEST_F(WindowOnDesktop, TheTabKeyMovesTheFocus) {
    ::PostMessageW(handle, WM_KEYDOWN, VK_TAB, 1);
    EXPECT_TRUE(Until([this] { return window.GetFocus() == button; }));
}

// The second message is the keyboard's repetition of the first.
TEST_F(WindowOnDesktop, AHeldEnterKeyPressesOnce) {
    constexpr LPARAM kWasDown = 1 << 30;
    int clicks = 0;
    window.SetFocus(button);
    Clicks pump(clicks);
    window.AddNotifyPump(&pump);
    ::PostMessageW(handle, WM_KEYDOWN, VK_RETURN, 1);
    ::PostMessageW(handle, WM_KEYDOWN, VK_RETURN, 1 | kWasDown);
    ::PostMessageW(handle, WM_CLOSE, 0, 0);
    bool handled = false;
    shown->SetCloseHandler([&handled] { handled = true; });
    EXPECT_TRUE(Until([&handled] { return handled; }));
    EXPECT_EQ(clicks, 1);
    window.RemoveNotifyPump(&pump);
}

TEST_F(WindowOnDesktop, AnotherScaleMovesTheWindowToThePlaceThatTheSystemSuggests) {
    RECT place{};
    ::GetWindowRect(handle, &place);
    const CDuiSize before = window.GetClientSize();
    place.right += 60;
    place.bottom += 40;
    ::SendMessageW(handle, WM_DPICHANGED, MAKEWPARAM(120, 120), reinterpret_cast<LPARAM>(&place));
    EXPECT_EQ(window.GetClientSize(), (CDuiSize{before.cx + 60, before.cy + 40}));
    EXPECT_TRUE(Shows({before.cx + 50, before.cy + 30}, RGB(255, 0, 0)));
}

// The system gives the wheel's place on the desktop, and positive turns upwards. The movement ends by itself: the
// window paints each of its steps without a message.
TEST_F(WindowOnDesktop, TheWheelScrollsWhatIsUnderThePointer) {
    auto* const view = Add<CScrollViewUI>({{L"pos", L"200,0,400,100"}});
    Add({{L"height", L"1000"}}, view);
    const CDuiPoint origin = shown->GetOrigin();
    const auto turn = [&](int notches, CDuiPoint point) {
        Post(WM_MOUSEWHEEL, MAKEWPARAM(0, notches * WHEEL_DELTA), {origin.x + point.x, origin.y + point.y});
    };
    turn(-2, {300, 50});
    turn(-2, {50, 200});
    EXPECT_TRUE(Until([&] { return view->GetScrollPos() == 120; }));
    turn(1, {300, 50});
    EXPECT_TRUE(Until([&] { return view->GetScrollPos() == 60; }));
}

TEST_F(WindowOnDesktop, ClosingIsAskedForAndTheWindowStays) {
    int asked = 0;
    shown->SetCloseHandler([&asked] { ++asked; });
    ::PostMessageW(handle, WM_CLOSE, 0, 0);
    EXPECT_TRUE(Until([&asked] { return asked == 1; }));
    ::PostQuitMessage(0);
    EXPECT_TRUE(Until([&asked] { return asked == 2; }));
    EXPECT_TRUE(::IsWindow(handle));
}

TEST_F(WindowOnDesktop, AnotherThreadEndsTheWait) {
    std::thread other([this] { shown->WakeUp(); });
    other.join();
    shown->RunOnce(std::nullopt);  // returns at all
    other = std::thread([this] {
        const kernel::UiTurn turn;
        button->SetAttribute(L"bkcolor", L"#FF00FF00");
    });
    {
        const kernel::UiTurnPause pause;
        other.join();
    }
    EXPECT_TRUE(Shows({50, 30}, RGB(0, 255, 0)));
}

TEST_F(WindowOnDesktop, AHandlersFailureComesOutOfTheWindowsTurn) {
    shown->SetCloseHandler([] { throw std::runtime_error("of the handler"); });
    ::PostMessageW(handle, WM_CLOSE, 0, 0);
    EXPECT_THROW(Until([] { return false; }), std::runtime_error);
}

}  // namespace
}  // namespace DuiLib
