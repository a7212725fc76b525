#include "foundation/ui_turn_assertion.h"

#include "support/toolkit/toolkit_test.h"

#if !defined(NDEBUG)
namespace DuiLib {

class UiTurnAssertionTest : public ToolkitTest {
protected:
    // The child begins anew: other threads are not copied into it half-way.
    UiTurnAssertionTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    template <class Operation>
    void ExpectCaught(const char* name, Operation operation) {
        const auto withoutTheTurn = [&operation] {
            const kernel::UiTurnPause pause;
            operation();
        };
        EXPECT_DEATH(withoutTheTurn(), std::string("called without the UI turn: .*") + name);
    }

    CContainerUI container;
    CPaintManagerUI window;
    CNotifyPump pump;
};

TEST_F(UiTurnAssertionTest, AChangeOfAControlIsCaught) {
    ExpectCaught("CControlUI::SetText", [this] { container.SetText(L"text"); });
}

TEST_F(UiTurnAssertionTest, AChangeOfATreeIsCaught) {
    ExpectCaught("CContainerUI::RemoveAll", [this] { container.RemoveAll(); });
}

TEST_F(UiTurnAssertionTest, AControlThatLeavesATreeIsCaught) {
    auto* const child = new CControlUI;
    container.Add(child);
    ExpectCaught("~CControlUI", [child] { delete child; });
}

TEST_F(UiTurnAssertionTest, AChangeOfAWindowIsCaught) {
    ExpectCaught("CPaintManagerUI::AddNotifyPump", [this] { window.AddNotifyPump(&pump); });
}

TEST_F(UiTurnAssertionTest, APumpThatIsRegisteredIsCaught) {
    ExpectCaught("CNotifyPump::AddVirtualWnd", [this] { pump.AddVirtualWnd(L"page", &pump); });
}

TEST_F(UiTurnAssertionTest, ABuildingIsCaught) {
    ExpectCaught("CDialogBuilder::Create", [] { CDialogBuilder().Create(L"page.xml"); });
}

TEST_F(UiTurnAssertionTest, AChangeOfTheScaleIsCaught) {
    ExpectCaught("CResourceManager::SetScale", [] { CResourceManager::GetInstance()->SetScale(200); });
}

TEST_F(UiTurnAssertionTest, AChangeOfTheLanguageIsCaught) {
    ExpectCaught("UICulture::Clear", [] { UICulture::GetInstance()->Clear(); });
}

}  // namespace DuiLib
#endif
