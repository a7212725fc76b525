#include <gmock/gmock.h>

#include "ansi_page.h"
#include "row_fixture.h"

namespace {

using DuiLib::RowInspector;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class FirmwareNotices : public RowFixture {
protected:
    FirmwareNotices() { MakeRow(); }
    std::vector<seam::Event> Reports() {
        std::vector<seam::Event> reports;
        for (const seam::Event& event : seam::Get().events) {
            if (event.kind == seam::Kind::kReport) reports.push_back(event);
        }
        return reports;
    }
};

TEST_F(FirmwareNotices, ATemplateWithoutPlaceholderGivesAnEmptyTip) {
    SetTextOf(L"IDS_ACCESSORIES_APP_STARTING", L"Close the program first.");
    row->AppRunningTipUpdateBtn();
    EXPECT_EQ(ToolTip(L"X1updateBtn"), L"");
}

TEST_F(FirmwareNotices, OnlyTheFirstOfTwoPlaceholdersIsFilled) {
    SetTextOf(L"IDS_ACCESSORIES_APP_STARTING", L"{0}: close {0}");
    row->AppRunningTipUpdateBtn();
    EXPECT_EQ(ToolTip(L"X1updateBtn"), L"Drawing pen: close {0}");
}

TEST_F(FirmwareNotices, TheTipOfTheStopButtonColoursTheProgressText) {
    row->AppRunningTipStopBtn();
    EXPECT_EQ(Attribute(L"X1progress", L"hottextcolor"), L"#660A59F7");
    EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Close Drawing pen first.");
    EXPECT_FALSE(Control(L"X1stopBtn").HasAttribute(L"hottextcolor"));
}

TEST_F(FirmwareNotices, TheTipOfTheUpdateButtonColoursTheButton) {
    row->AppRunningTipUpdateBtn();
    EXPECT_EQ(Attribute(L"X1updateBtn", L"hottextcolor"), L"#660A59F7");
    EXPECT_FALSE(Control(L"X1progress").HasAttribute(L"hottextcolor"));
}

TEST_F(FirmwareNotices, WithoutAClientTheLinesAreLoggedAndNothingIsPosted) {
    RowInspector::DropClient(*row);
    Forget();
    row->SendUIPluginUpdate("X1");
    row->SendUIPluginUpdateFinish("X1");
    EXPECT_THAT(Logged(3), ElementsAre(L"[AccessoryLog]update : X1(DuiLib::AccessoriesFirwareWnd::SendUIPluginUpdate)",
                                       L"[AccessoryLog]update finish: X1"
                                       L"(DuiLib::AccessoriesFirwareWnd::SendUIPluginUpdateFinish)"));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(FirmwareNotices, TheZeroOfTheKeyIsPartOfThePayload) {
    Forget();
    row->SendUIPluginUpdate("0123456789");
    EXPECT_EQ(seam::Get().events.back().item.dataLen, 11);
    EXPECT_THAT(Posted(), ElementsAre("B20018 B20033 0123456789\\0"));
}

TEST_F(FirmwareNotices, TwoClicksSendTwoReportsAndARefusedOneStillSendsOne) {
    Click(L"X1updateBtn");
    CompanionRuns(L"X1");
    Click(L"X1updateBtn");
    ASSERT_EQ(Reports().size(), 2u);
    for (const seam::Event& report : Reports()) {
        EXPECT_EQ(report.text, "631990011");
        EXPECT_EQ(report.number, 0) << "the platform";
        EXPECT_THAT(report.fields, ElementsAre(Pair("modelID", "IDS_NAME_PEN"), Pair("versionInfo", "1.0.2")));
    }
}

TEST_F(FirmwareNotices, ADriverHasItsOwnEventId) {
    m_page.Discard();
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.isDriver = true;
    MakeRow(desc);
    Click(L"X1updateBtn");
    EXPECT_EQ(Reports().front().text, "631990010");
    EXPECT_THAT(Logged(3),
                testing::Contains(L"[AccessoryLog]update plugin type: 1 firename: IDS_NAME_PEN pkgname: X1"
                                  L"(DuiLib::AccessoriesFirwareWnd::BigDataReportSettingCenterUpdatePlugin)"));
}

TEST_F(FirmwareNotices, AModelIdOutsideTheAnsiPageReachesTheReportInItsReplacementForm) {
    const AnsiPage page(1252);
    m_page.Discard();
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.nameId = L"pen\u7b14";
    desc.version = L"";
    MakeRow(desc);
    Click(L"X1updateBtn");
    EXPECT_THAT(Reports().front().fields, ElementsAre(Pair("modelID", "pen?"), Pair("versionInfo", "")));
}

}  // namespace
