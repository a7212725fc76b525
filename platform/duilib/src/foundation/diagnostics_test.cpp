#include "duilib/diagnostics.h"

#include "foundation/diagnostics.h"
#include "kernel/ui_turn.h"
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

TEST(Diagnostics, LinesGoToStandardErrorUntilASinkIsSet) {
    std::string heard;
    SetDiagnosticSink([&](const std::string& line) { heard = line; });
    Report("x.xml:1: to the sink");
    EXPECT_EQ(heard, "x.xml:1: to the sink");
    SetDiagnosticSink({});
    ::testing::internal::CaptureStderr();
    Report("x.xml:2: to standard error");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "x.xml:2: to standard error\n");
    EXPECT_EQ(heard, "x.xml:1: to the sink");
}

TEST_F(ToolkitTest, WhatADiagnosticSinkThrowsEndsNothing) {
    int lines = 0;
    SetDiagnosticSink([&lines](const std::string&) {
        ++lines;
        throw std::runtime_error("the disk is full");
    });
    CDialogBuilder builder;
    EXPECT_EQ(builder.Create(L"missing.xml"), nullptr);
    EXPECT_FALSE(builder.GetError().IsEmpty());
    EXPECT_EQ(lines, 1);
}

// ---- Calls without the UI turn

#if !defined(NDEBUG)
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

TEST_F(UiTurnAssertionTest, AReadingIsCaught) {
    ExpectCaught("CControlUI::GetText", [this] { container.GetText(); });
    ExpectCaught("CContainerUI::GetCount", [this] { container.GetCount(); });
    ExpectCaught("CPaintManagerUI::FindControl", [this] { window.FindControl(L"title"); });
    ExpectCaught("CRenderEngine::GetTextMeasurer", [] { CRenderEngine::GetTextMeasurer(); });
    ExpectCaught("SharedText::SharedText", [] { SharedText(L"text"); });
}

TEST_F(UiTurnAssertionTest, AChangeOfTheScaleIsCaught) {
    ExpectCaught("CResourceManager::SetScale", [] { CResourceManager::GetInstance()->SetScale(200); });
}

TEST_F(UiTurnAssertionTest, AChangeOfTheLanguageIsCaught) {
    ExpectCaught("UICulture::Clear", [] { UICulture::GetInstance()->Clear(); });
}
#endif

}  // namespace DuiLib
