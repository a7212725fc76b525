#include <gmock/gmock.h>

#include "row_fixture.h"

namespace {

using DuiLib::RowInspector;
using testing::ElementsAre;
using testing::IsEmpty;

class FirmwareState : public RowFixture {
protected:
    FirmwareState() { MakeRow(); }
};

TEST_F(FirmwareState, AClickOnUpdateStartsAndReports) {
    Forget();
    Click(L"X1updateBtn");
    EXPECT_THAT(Logged(3), ElementsAre(Line(L" updateBtn:X1", L"OnClick"), Line(L"update : X1", L"SendUIPluginUpdate"),
                                       Line(L"update plugin type: 0 firename: IDS_NAME_PEN pkgname: X1",
                                            L"BigDataReportSettingCenterUpdatePlugin")));
    EXPECT_THAT(Logged(4), IsEmpty());
    EXPECT_THAT(Posted(), ElementsAre("B20001 B20022 X1\\0", "B20018 B20033 X1\\0"));
}

TEST_F(FirmwareState, PauseAsksTheServiceAndTellsTheHost) {
    Download(37);
    Click(L"X1stopBtn");
    EXPECT_THAT(Logged(3), ElementsAre(Line(L"resume progress record: 37%", L"SetResume"),
                                       Line(L"resume pos record: 44,0,120,0", L"SetResume"),
                                       Line(L"ControlDownload : progress wrong nullpter", L"ControlDownload"),
                                       Line(L"update finish: X1", L"SendUIPluginUpdateFinish")));
    EXPECT_THAT(Logged(4), IsEmpty());
    EXPECT_THAT(Posted(), ElementsAre("B20001 B20025 X1\\0", "B20018 B20034 X1\\0"));
    EXPECT_TRUE(RowInspector::IsPaused(*row));
    EXPECT_EQ(Text(L"X1progress"), L"Resume");
    EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Resume");
    EXPECT_EQ(Control(L"X1progress").GetFont(), 102);
}

TEST_F(FirmwareState, PauseIsPostedUnderTheResumeTextAndBeforeTheRowCountsAsPaused) {
    Download(37);
    seam::Get().onPost = [this](int) {
        EXPECT_EQ(Text(L"X1progress"), L"Resume");
        EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Resume");
        EXPECT_FALSE(RowInspector::IsPaused(*row));
    };
    Click(L"X1stopBtn");
    EXPECT_EQ(Posted().size(), 2u);
}

TEST_F(FirmwareState, PauseIsNotRefusedWhileTheCompanionRuns) {
    Download(37);
    CompanionRuns(L"X1");
    Click(L"X1stopBtn");
    EXPECT_TRUE(RowInspector::IsPaused(*row));
}

TEST_F(FirmwareState, PauseWritesIntoAControlThatHasTheKeyAsItsName) {
    Download(37);
    Control(L"desName").SetName(L"X1");
    Click(L"X1stopBtn");
    EXPECT_EQ(Text(L"X1"), L"Resume");
}

TEST_F(FirmwareState, ResumeAfterAPercentPutsTextAndBarBack) {
    Download(37);
    Click(L"X1stopBtn");
    Control(L"X1progressLayout").SetAttribute(L"pos", L"1,0,2,0");
    Forget();
    Click(L"X1stopBtn");
    EXPECT_THAT(Logged(3), ElementsAre(Line(L"resume click progress record: 37%", L"SetResumeClick"),
                                       Line(L"resume click pos record: 44,0,120,0", L"SetResumeClick"),
                                       Line(L"update : X1", L"SendUIPluginUpdate")));
    EXPECT_THAT(Logged(4), IsEmpty());
    EXPECT_THAT(Posted(), ElementsAre("B20001 B20022 X1\\0", "B20018 B20033 X1\\0"));
    EXPECT_EQ(Text(L"X1progress"), L"37%");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"44,0,120,0");
    EXPECT_EQ(ToolTip(L"X1stopBtn"), L"");
    EXPECT_FALSE(RowInspector::IsPaused(*row));
}

TEST_F(FirmwareState, ResumeIsPostedBetweenTheOldTextAndTheEndOfTheToolTip) {
    Download(37);
    Click(L"X1stopBtn");
    Control(L"X1progressLayout").SetAttribute(L"pos", L"1,0,2,0");
    Forget();
    seam::Get().onPost = [this](int) {
        EXPECT_EQ(Text(L"X1progress"), L"37%");
        EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"44,0,120,0");
        EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Resume");
        EXPECT_TRUE(RowInspector::IsPaused(*row));
    };
    Click(L"X1stopBtn");
    EXPECT_EQ(Posted().size(), 2u);
}

TEST_F(FirmwareState, ResumeWhileInstallingShowsTheInstallingText) {
    Download(100);
    Click(L"X1stopBtn");
    Click(L"X1stopBtn");
    EXPECT_EQ(Text(L"X1progress"), L"Installing...");
    EXPECT_EQ(Control(L"X1progress").GetFont(), 102);
}

TEST_F(FirmwareState, ResumeAfterTheEndShowsTheEndTextInFont9AndSaysSo) {
    Download(100);
    row->SetFinishProcess();
    Click(L"X1stopBtn");
    Forget();
    Click(L"X1stopBtn");
    EXPECT_THAT(Logged(), testing::Contains(Line(L"SetResumeClick:progressRecordStr is UPDATE_STATUS_INSTALLEND",
                                                 L"SetResumeClick")));
    EXPECT_EQ(Text(L"X1progress"), L"Up to date");
    EXPECT_EQ(Control(L"X1progress").GetFont(), 9);
}

TEST_F(FirmwareState, ResumeIsRefusedWhileTheCompanionRuns) {
    Download(37);
    Click(L"X1stopBtn");
    CompanionRuns(L"X1");
    Forget();
    Click(L"X1stopBtn");
    EXPECT_THAT(Logged(3), ElementsAre(Line(L"app running update: X1", L"SetResumeClick"),
                                       Line(L"update app running stop", L"AppRunningTipStopBtn")));
    EXPECT_THAT(Logged(4), IsEmpty());
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_TRUE(RowInspector::IsPaused(*row));
    EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Close Drawing pen first.");
}

TEST_F(FirmwareState, AFailureDrawsTheBarEmptyAndKeepsTheRecords) {
    Download(37);
    row->SetRetryBtn();
    EXPECT_THAT(Logged(3), ElementsAre(Line(L"set retry btn", L"SetRetryBtn"),
                                       Line(L"update finish: X1", L"SendUIPluginUpdateFinish"),
                                       Line(L"retry progress record: 37%", L"SetRetryBtn"),
                                       Line(L"retry pos record: 44,0,120,0", L"SetRetryBtn")));
    EXPECT_THAT(Logged(4), IsEmpty());
    EXPECT_THAT(Posted(), ElementsAre("B20018 B20034 X1\\0"));
    EXPECT_TRUE(RowInspector::NeedsRetry(*row));
    EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"0,0,0,0");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"width"), L"120");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"bkround"), L"28,28");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"bordersize"), L"0");
    EXPECT_EQ(Attribute(L"X1progressLabel", L"bordersize"), L"0");
    EXPECT_EQ(Attribute(L"X1progress", L"textcolor"), L"#FF0A59F7");
    EXPECT_EQ(Attribute(L"X1progress", L"bkcolor"), L"0C000000");
    EXPECT_EQ(Attribute(L"X1progress", L"bordersize"), L"0");
    EXPECT_EQ(Attribute(L"X1progress", L"bkround"), L"28,28");
    EXPECT_EQ(Control(L"X1progress").GetFont(), 9);
    EXPECT_EQ(Text(L"X1progress"), L"Try again");
    EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Try again");
    EXPECT_EQ(RowInspector::ProgressRecord(*row), L"37%");
    EXPECT_EQ(RowInspector::PosRecord(*row), L"44,0,120,0");
}

TEST_F(FirmwareState, AFailureIsToldToTheHostBeforeTheRowShowsIt) {
    Download(37);
    seam::Get().onPost = [this](int) {
        EXPECT_FALSE(RowInspector::NeedsRetry(*row));
        EXPECT_EQ(Text(L"X1progress"), L"37%");
        EXPECT_EQ(Control(L"X1progress").GetFont(), 102);
        EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"44,0,120,0");
        EXPECT_EQ(ToolTip(L"X1stopBtn"), L"");
        EXPECT_THAT(Logged(3), ElementsAre(Line(L"set retry btn", L"SetRetryBtn"),
                                           Line(L"update finish: X1", L"SendUIPluginUpdateFinish")));
    };
    row->SetRetryBtn();
    EXPECT_EQ(Posted().size(), 1u);
}

TEST_F(FirmwareState, ARetryPutsTheLastFillBackAndStartsAgain) {
    Download(37);
    row->SetRetryBtn();
    Forget();
    Click(L"X1stopBtn");
    EXPECT_THAT(Logged(3),
                ElementsAre(Line(L"update retry", L"OnClick::<lambda>::operator ()"),
                            Line(L"retry click progress record: 37%", L"SetRetryClick"),
                            Line(L"retry click pos record: 44,0,120,0", L"SetRetryClick"),
                            Line(L"control retry", L"ControlRetry"), Line(L"update : X1", L"SendUIPluginUpdate")));
    EXPECT_THAT(Logged(4), IsEmpty());
    EXPECT_THAT(Posted(), ElementsAre("B20001 B20022 X1\\0", "B20018 B20033 X1\\0"));
    EXPECT_FALSE(RowInspector::NeedsRetry(*row));
    EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"44,0,120,0");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"bkround"), L"0,0");
    EXPECT_EQ(Attribute(L"X1progressLabel", L"bordersize"), L"1");
    EXPECT_EQ(Attribute(L"X1progress", L"textcolor"), L"#FF191919");
    EXPECT_EQ(Attribute(L"X1progress", L"bkcolor"), L"00FFFFFF");
    EXPECT_EQ(Attribute(L"X1progress", L"bordersize"), L"1");
    EXPECT_EQ(Text(L"X1progress"), L"37%");
    EXPECT_EQ(Control(L"X1progress").GetFont(), 102);
    EXPECT_EQ(ToolTip(L"X1stopBtn"), L"");
}

TEST_F(FirmwareState, ARetryIsPostedUnderTheDownloadLookAndWhileStillPending) {
    Download(37);
    row->SetRetryBtn();
    Forget();
    seam::Get().onPost = [this](int) {
        EXPECT_EQ(Text(L"X1progress"), L"37%");
        EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"44,0,120,0");
        EXPECT_EQ(ToolTip(L"X1stopBtn"), L"");
        EXPECT_TRUE(RowInspector::NeedsRetry(*row));
    };
    Click(L"X1stopBtn");
    EXPECT_EQ(Posted().size(), 2u);
}

TEST_F(FirmwareState, ARetryWhileTheCompanionRunsShowsTheTipAndStaysPending) {
    Download(37);
    row->SetRetryBtn();
    CompanionRuns(L"X1");
    Forget();
    Click(L"X1stopBtn");
    EXPECT_THAT(Logged(3), ElementsAre(Line(L"update retry", L"OnClick::<lambda>::operator ()"),
                                       Line(L"app running update: X1", L"OnClick::<lambda>::operator ()"),
                                       Line(L"update app running stop", L"AppRunningTipStopBtn")));
    EXPECT_THAT(Logged(4), IsEmpty());
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_TRUE(RowInspector::NeedsRetry(*row));
    EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Close Drawing pen first.");
}

TEST_F(FirmwareState, ARetryAfterInstallingOrTheEndShowsTheirTexts) {
    Download(100);
    row->SetRetryBtn();
    Click(L"X1stopBtn");
    EXPECT_EQ(Text(L"X1progress"), L"Installing...");
    row->SetFinishProcess();
    row->SetRetryBtn();
    Forget();
    Click(L"X1stopBtn");
    EXPECT_EQ(Text(L"X1progress"), L"Up to date");
    EXPECT_EQ(Control(L"X1progress").GetFont(), 9);
    EXPECT_THAT(Logged(), testing::Not(testing::Contains(testing::HasSubstr(L"UPDATE_STATUS_INSTALLEND"))));
}

TEST_F(FirmwareState, ARowThatWasPausedAndThenFailedIsStillPausedAfterTheRetry) {
    Download(37);
    Click(L"X1stopBtn");
    row->SetRetryBtn();
    Click(L"X1stopBtn");
    EXPECT_TRUE(RowInspector::IsPaused(*row));
    Forget();
    Click(L"X1stopBtn");
    EXPECT_THAT(Posted(), ElementsAre("B20001 B20022 X1\\0", "B20018 B20033 X1\\0")) << "resumes instead of pausing";
}

TEST_F(FirmwareState, AClickOnAControlOfAnotherRowIsIgnored) {
    DuiLib::CControlUI other;
    other.SetName(L"X2stopBtn");
    DuiLib::TNotifyUI message{DuiLib::kNotifyClick, &other, {}, {}};
    Forget();
    row->OnClick(message);
    EXPECT_TRUE(seam::Get().events.empty());
}

TEST_F(FirmwareState, ANotificationOtherThanClickIsIgnored) {
    Forget();
    m_page.Notify(L"X1updateBtn", L"mouseenter");
    DuiLib::TNotifyUI message{L"mouseenter", &Control(L"X1updateBtn"), {}, {}};
    row->OnClick(message);
    EXPECT_TRUE(seam::Get().events.empty());
}

TEST_F(FirmwareState, ANotificationWithoutASenderIsIgnored) {
    Forget();
    DuiLib::TNotifyUI message{DuiLib::kNotifyClick, nullptr, {}, {}};
    row->OnClick(message);
    EXPECT_TRUE(seam::Get().events.empty());
}

}  // namespace
