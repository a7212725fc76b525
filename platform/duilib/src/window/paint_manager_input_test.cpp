// Input that one part of a window has for itself, and what the keyboard moves on to.
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

using ModalInputTest = WindowTest<CContainerUI>;

TEST_F(ModalInputTest, AModalControlHasTheInputForItself) {
    auto* const below = Add<CButtonUI>({{L"pos", L"0,0,50,50"}});
    auto* const question = Add<CContainerUI>();
    auto* const answer = Add<CButtonUI>({{L"pos", L"100,100,150,150"}}, question);
    window.SetModal(question);
    EXPECT_FALSE(Click(below));
    EXPECT_TRUE(Click(answer));
    window.KeyDown(DuiKey::kTab);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), answer);
    question->SetVisible(false);
    EXPECT_TRUE(Click(below));
}

TEST_F(ModalInputTest, TheFocusComesBackWhenAModalControlEnds) {
    auto* const below = Add<CButtonUI>({{L"pos", L"0,0,50,50"}});
    auto* const question = Add<CContainerUI>({{L"visible", L"false"}});
    auto* const answer = Add<CButtonUI>({{L"pos", L"100,100,150,150"}}, question);
    window.SetFocus(below);
    question->SetVisible(true);
    window.SetModal(question);
    EXPECT_EQ(window.GetFocus(), nullptr);
    window.SetFocus(answer);
    question->SetVisible(false);
    window.SetModal(nullptr);
    EXPECT_EQ(window.GetFocus(), below);
}

TEST_F(ModalInputTest, EscapeCancelsAModalControl) {
    struct Pump : CNotifyPump {
        const DUI_MSGMAP* GetMessageMap() const override {
            static const DUI_MSGMAP_ENTRY entries[] = {{kNotifyCancel, nullptr, &CNotifyPump::OnClick},
                                                       {nullptr, nullptr, nullptr}};
            static const DUI_MSGMAP map{nullptr, entries};
            return &map;
        }
        void OnClick(TNotifyUI& message) override { cancelled = message.sender; }
        CControlUI* cancelled = nullptr;
    } pump;
    window.AddNotifyPump(&pump);
    auto* const question = Add<CContainerUI>();
    EXPECT_FALSE(window.KeyDown(DuiKey::kEscape));
    window.SetModal(question);
    EXPECT_TRUE(window.KeyDown(DuiKey::kEscape));
    EXPECT_EQ(pump.cancelled, question);
}

TEST_F(ModalInputTest, TabGoesOnFromAButtonThatHasGivenWay) {
    auto* const first = Add<CButtonUI>();
    auto* const second = Add<CButtonUI>();
    auto* const third = Add<CButtonUI>();
    first->SetVisible(true);
    window.KeyDown(DuiKey::kTab);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), second);
    second->SetVisible(false);
    window.KeyDown(DuiKey::kTab);
    EXPECT_EQ(window.GetFocus(), third);
}

}  // namespace DuiLib
