#include <gmock/gmock.h>

#include <limits>

#include "firmware_item/row_controls.h"
#include "row_fixture.h"

namespace {

using DuiLib::RowInspector;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class FirmwarePresentation : public RowFixture {
protected:
    void UseLabels(const wchar_t* text) {
        for (const wchar_t* id :
             {L"IDS_SETTING_ACCESSORIES_UPDATE", L"IDS_SETTING_ACCESSORIES_INSTALLING",
              L"IDS_SETTING_ACCESSORIES_INSTALL_END", L"IDS_ACCESSORIES_RESUME", L"IDS_ACCESSORIES_RETRY"}) {
            SetTextOf(id, text);
        }
    }
};

TEST_F(FirmwarePresentation, NarrowLabelsMakeAButtonOf88) {
    UseLabels(L"go");
    MakeRow();
    EXPECT_EQ(RowInspector::BarWidth(*row), 88);
    for (const wchar_t* name :
         {L"X1updateBtn", L"X1progressLayout", L"X1progressBtn", L"X1progressLabel", L"X1progress", L"X1stopBtn"}) {
        EXPECT_EQ(Attribute(name, L"width"), L"88") << testing::PrintToString(std::wstring(name));
    }
    EXPECT_EQ(Text(L"updateBtnText"), L"go") << "the last label stays";
    EXPECT_EQ(Control(L"updateBtnText").GetFont(), 102);
}

TEST_F(FirmwarePresentation, LabelsOf160AndMoreMakeAButtonOf172) {
    for (const int units : {20, 40}) {
        SetTextOf(L"IDS_ACCESSORIES_RETRY", std::wstring(static_cast<std::size_t>(units), L'm').c_str());
        m_page.Discard();
        Forget();
        MakeRow();
        EXPECT_EQ(RowInspector::BarWidth(*row), 172);
        EXPECT_THAT(Logged(3), Contains(L"[AccessoryLog]setting upgrade update button width: 172"
                                        L"(DuiLib::AccessoriesFirwareWnd::InitUpdateButton)"));
    }
}

TEST_F(FirmwarePresentation, TheMeasuredWidthIsTakenBackToDesignPixels) {
    UseScale(150);
    MakeRow();
    EXPECT_EQ(RowInspector::BarWidth(*row), 13 * 8 + 16) << "\"Installing...\"";
}

TEST_F(FirmwarePresentation, WithoutTheMeasuringTextTheWidthStaysZero) {
    UseLayouts({{"updateBtnText"}, true, true});
    MakeRow();
    EXPECT_EQ(RowInspector::BarWidth(*row), 0);
    EXPECT_FALSE(Control(L"X1updateBtn").HasAttribute(L"width"));
}

TEST_F(FirmwarePresentation, StartSwitchesToTheProgressGroupAndPostsBoth) {
    MakeRow();
    Forget();
    row->RlushAccessries();
    EXPECT_FALSE(Shown(L"X1updateBtn"));
    for (const wchar_t* name :
         {L"X1progressLayout", L"X1progressBtn", L"X1progressLabel", L"X1progress", L"X1stopBtn"}) {
        EXPECT_TRUE(Shown(name)) << testing::PrintToString(std::wstring(name));
    }
    EXPECT_EQ(Text(L"X1progress"), L"0%");
    EXPECT_THAT(Posted(), ElementsAre("B20001 B20022 X1\\0", "B20018 B20033 X1\\0"));
}

TEST_F(FirmwarePresentation, TheStartIsPostedOnceTheProgressGroupIsShown) {
    MakeRow();
    seam::Get().onPost = [this](int) {
        EXPECT_FALSE(Shown(L"X1updateBtn"));
        EXPECT_TRUE(Shown(L"X1progress"));
        EXPECT_TRUE(Shown(L"X1stopBtn"));
        EXPECT_EQ(Text(L"X1progress"), L"0%");
    };
    row->RlushAccessries();
    EXPECT_EQ(Posted().size(), 2u);
}

TEST_F(FirmwarePresentation, StartWithoutTheControlsLogsAndDoesNothing) {
    UseLayouts({{"stopBtn"}, true, true});
    ExpectFailureLine(L"nullptr");
    MakeRow();
    Forget();
    row->RlushAccessries();
    EXPECT_THAT(Logged(3), ElementsAre(L"[AccessoryLog] paintManager wrong nullptr"
                                       L"(DuiLib::AccessoriesFirwareWnd::RlushAccessries)"));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(FirmwarePresentation, RenamedControlsAreLeftAloneButTheStartIsPosted) {
    MakeRow();
    Control(L"X1updateBtn").SetName(L"other1");
    Control(L"X1stopBtn").SetName(L"other2");
    Forget();
    row->RlushAccessries();
    EXPECT_TRUE(Shown(L"other1"));
    EXPECT_FALSE(Shown(L"other2"));
    EXPECT_EQ(Posted().size(), 2u);
}

TEST_F(FirmwarePresentation, WhileTheCompanionRunsStartChangesNothingButTheTip) {
    MakeRow();
    CompanionRuns(L"X1");
    Forget();
    row->RlushAccessries();
    EXPECT_TRUE(Shown(L"X1updateBtn"));
    EXPECT_FALSE(Shown(L"X1progress"));
    EXPECT_EQ(ToolTip(L"X1updateBtn"), L"Close Drawing pen first.");
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_THAT(Logged(3),
                ElementsAre(L"[AccessoryLog]app running update: X1(DuiLib::AccessoriesFirwareWnd::RlushAccessries)",
                            L"[AccessoryLog]update app running"
                            L"(DuiLib::AccessoriesFirwareWnd::AppRunningTipUpdateBtn)"));
}

TEST_F(FirmwarePresentation, TheSecondCompanionQuestionIsAskedOnlyAfterAYes) {
    MakeRow();
    row->RlushAccessries();
    EXPECT_EQ(seam::Get().companionQuestions, (std::vector<std::wstring>{L"running:X1"}));
    seam::Get().companions[L"X1"] = {false, true};
    row->RlushAccessries();
    EXPECT_EQ(seam::Get().companionQuestions, (std::vector<std::wstring>{L"running:X1", L"running:X1", L"app:X1"}));
}

struct Fill {
    int percent;
    const wchar_t* pos;
    const wchar_t* text;
};

TEST_F(FirmwarePresentation, ThePercentageIsDrawnAsALayerOverThePartNotYetDone) {
    MakeRow();  // a bar of 120
    for (const Fill& c : {Fill{0, L"0,0,120,0", L"0%"}, Fill{1, L"1,0,120,0", L"1%"}, Fill{37, L"44,0,120,0", L"37%"},
                          Fill{99, L"118,0,120,0", L"99%"}, Fill{-5, L"-6,0,120,0", L"-5%"}}) {
        row->ShowDownloadProgress(c.percent);
        EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), c.pos);
        EXPECT_EQ(Text(L"X1progress"), c.text);
        EXPECT_EQ(RowInspector::ProgressRecord(*row), c.text);
        EXPECT_EQ(RowInspector::PosRecord(*row), c.pos);
    }
    EXPECT_EQ(Attribute(L"X1progressLabel", L"borderfillcolor"), L"#FFA8B9FC");
    EXPECT_EQ(Attribute(L"X1progressLabel", L"bordersize"), L"1");
    EXPECT_EQ(Control(L"X1progress").GetFont(), 102);
    EXPECT_EQ(Attribute(L"X1progress", L"textcolor"), L"#FF191919");
    EXPECT_EQ(Attribute(L"X1progress", L"bordersize"), L"1");
    EXPECT_EQ(Attribute(L"X1progress", L"bkcolor"), L"00FFFFFF");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"bkround"), L"0,0");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"bkcolor"), L"#FFFFFFFF");
    EXPECT_FALSE(RowInspector::IsInstalling(*row));
}

TEST_F(FirmwarePresentation, AHundredPercentAndMoreIsTheInstallingLook) {
    MakeRow();
    row->RlushAccessries();
    for (const Fill& c : {Fill{100, L"120,0,120,0", L""}, Fill{250, L"300,0,120,0", L""}}) {
        row->ShowDownloadProgress(c.percent);
        EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), c.pos);
        EXPECT_EQ(RowInspector::ProgressRecord(*row), L"1001");
        EXPECT_TRUE(RowInspector::IsInstalling(*row));
        EXPECT_EQ(Text(L"X1progress"), L"Installing...");
        EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Installing...");
        EXPECT_FALSE(Shown(L"X1progressLabel"));
        EXPECT_EQ(Attribute(L"X1progressLayout", L"width"), L"120");
        EXPECT_EQ(Attribute(L"X1progressLayout", L"bkround"), L"28,28");
        EXPECT_EQ(Attribute(L"X1progressLayout", L"bordersize"), L"0");
        EXPECT_EQ(Attribute(L"X1progress", L"bkround"), L"28,28");
        EXPECT_EQ(Attribute(L"X1progress", L"bkcolor"), L"#FFA8B9FC");
        EXPECT_EQ(Attribute(L"X1progress", L"textcolor"), L"#FFFFFFFF");
        EXPECT_EQ(Attribute(L"X1progress", L"bordersize"), L"0");
    }
}

TEST_F(FirmwarePresentation, ProgressWhilePausedShowsOnlyTheResumeText) {
    MakeRow();
    row->RlushAccessries();
    row->ShowDownloadProgress(10);
    row->SetResume();
    Control(L"X1progress").SetText(L"something else");
    row->ShowDownloadProgress(50);
    EXPECT_EQ(Text(L"X1progress"), L"Resume");
    EXPECT_EQ(RowInspector::Percent(*row), 50);
    EXPECT_EQ(RowInspector::ProgressRecord(*row), L"10%");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"12,0,120,0");
}

TEST_F(FirmwarePresentation, AnAbsurdPercentageDoesNotOverflow) {
    MakeRow();
    row->ShowDownloadProgress(std::numeric_limits<int>::max());
    EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"-2147483648,0,120,0") << "as the platform converts it";
    row->ShowDownloadProgress(std::numeric_limits<int>::min());
    EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"-2147483648,0,120,0");
}

TEST_F(FirmwarePresentation, ThePullDownFoldsAndUnfolds) {
    MakeRow();  // information of 40 pixels
    heights.clear();
    Forget();
    Click(L"X1pulldown");
    EXPECT_FALSE(Shown(L"X1devInfo"));
    EXPECT_FALSE(RowInspector::Divider(*row)->IsVisible());
    EXPECT_EQ(Attribute(L"X1pulldown", L"normalimage"), L"file='drawable/Brindle/ic_down.png' reverse='true'");
    EXPECT_EQ(Control(L"X1hor").GetFixedHeight(), 52);
    EXPECT_EQ(Control(L"X1ver").GetFixedHeight(), 52);
    EXPECT_EQ(RowInspector::RowHeight(*row), 77 - 24 - 40);
    EXPECT_THAT(heights, ElementsAre(HeightReport{64, false, false}));
    EXPECT_THAT(Logged(3),
                ElementsAre(L"[AccessoryLog] devHeight :40(DuiLib::AccessoriesFirwareWnd::ModifiyPullDownStatus)"));

    heights.clear();
    Click(L"X1pulldown");
    EXPECT_TRUE(Shown(L"X1devInfo"));
    EXPECT_EQ(Attribute(L"X1pulldown", L"normalimage"), L"file='drawable/Brindle/ic_up.png' reverse='true'");
    EXPECT_EQ(Control(L"X1hor").GetFixedHeight(), 76 + 40);
    EXPECT_EQ(Control(L"X1ver").GetFixedHeight(), 76 + 40);
    EXPECT_THAT(heights, ElementsAre(HeightReport{64, true, false}));
    EXPECT_EQ(RowInspector::RowHeight(*row), 77) << "two clicks bring it back";
}

TEST_F(FirmwarePresentation, UnfoldedHeightsAreDevicePixels) {
    UseScale(150);
    MakeRow();  // two lines of 30 pixels
    Click(L"X1pulldown");
    EXPECT_EQ(Control(L"X1hor").GetFixedHeight(), 78);
    heights.clear();
    Click(L"X1pulldown");
    EXPECT_EQ(Control(L"X1hor").GetFixedHeight(), 114 + 60);
    EXPECT_THAT(heights, ElementsAre(HeightReport{64, true, false}));
}

TEST_F(FirmwarePresentation, ThePanelsHeightIsDividedInSinglePrecision) {
    UseScale(110);
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.devInfo = L"1\n2\n3\n";
    MakeRow(desc);
    EXPECT_EQ(RowInspector::DevInfoHeight(*row), 66);
    Click(L"X1pulldown");
    EXPECT_EQ(RowInspector::RowHeight(*row), -7) << "in double precision it would be -6";
}

TEST_F(FirmwarePresentation, UpdateDownloadFormLeavesTheRow24HigherThanAPullDown) {
    MakeRow();
    Forget();
    heights.clear();
    row->UpdateDownloadForm();
    EXPECT_EQ(RowInspector::RowHeight(*row), 77 - 40);
    EXPECT_FALSE(Shown(L"X1devInfo"));
    EXPECT_FALSE(RowInspector::Divider(*row)->IsVisible());
    EXPECT_EQ(Control(L"X1hor").GetFixedHeight(), 52);
    EXPECT_EQ(Control(L"X1ver").GetFixedHeight(), 52);
    EXPECT_EQ(Attribute(L"X1pulldown", L"normalimage"), L"file='drawable/Brindle/ic_down.png' reverse='true'");
    EXPECT_THAT(heights, IsEmpty());
    EXPECT_THAT(Logged(3),
                ElementsAre(L"[AccessoryLog] reduce hor :52(DuiLib::AccessoriesFirwareWnd::UpdateDownloadForm)"));
}

TEST_F(FirmwarePresentation, UpdateDownloadFormAfterAnUnfoldIsLikeTheFirst) {
    UseScale(150);
    MakeRow();
    Click(L"X1pulldown");
    EXPECT_EQ(RowInspector::RowHeight(*row), 77 - 24 - 40);
    Click(L"X1pulldown");
    Forget();
    row->UpdateDownloadForm();
    EXPECT_EQ(RowInspector::RowHeight(*row), 77 - 40);
    EXPECT_FALSE(RowInspector::Divider(*row)->IsVisible());
    EXPECT_EQ(Control(L"X1ver").GetFixedHeight(), 78);
    EXPECT_THAT(Logged(3),
                ElementsAre(L"[AccessoryLog] reduce hor :78(DuiLib::AccessoriesFirwareWnd::UpdateDownloadForm)"));
}

TEST_F(FirmwarePresentation, BelowAHundredPercentTheDivisorIsAHundred) {
    for (const auto& [scale, divisor] : {std::pair{100u, 1.0f}, {125u, 1.25f}, {99u, 100.0f}, {50u, 100.0f}}) {
        UseScale(scale);
        EXPECT_EQ(DuiLib::ScaleDivisor(), divisor) << scale;
    }
}

TEST_F(FirmwarePresentation, TruncationGoesTowardZero) {
    EXPECT_EQ(DuiLib::Truncate(1.9), 1);
    EXPECT_EQ(DuiLib::Truncate(-1.9), -1);
    EXPECT_EQ(DuiLib::Truncate(2147483647.5), 2147483647);
    EXPECT_EQ(DuiLib::Truncate(2147483648.0), std::numeric_limits<int>::min());
    EXPECT_EQ(DuiLib::Truncate(-3e9), std::numeric_limits<int>::min());
}

}  // namespace
