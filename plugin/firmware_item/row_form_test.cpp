#include <gmock/gmock.h>

#include "nothrow_failure.h"
#include "row_fixture.h"

namespace {

using DuiLib::AccessoriesFirwareWnd;
using DuiLib::RowInspector;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class FirmwareForm : public RowFixture {};

TEST_F(FirmwareForm, ARowStartsWithNothingDone) {
    const AccessoriesFirwareWnd fresh;
    EXPECT_EQ(RowInspector::ProgressRecord(fresh), L"0%");
    EXPECT_EQ(RowInspector::PosRecord(fresh), L"0,0,0,0");
    EXPECT_EQ(RowInspector::DevInfoLines(fresh), 0u);
    EXPECT_EQ(RowInspector::Client(fresh), nullptr);
}

TEST_F(FirmwareForm, TheNumberOfLinesIsTakenFromTheDescription) {
    MakeRow();
    EXPECT_EQ(RowInspector::DevInfoLines(*row), 2u);
}

TEST_F(FirmwareForm, ShowsVersionNamePictureAndInformation) {
    MakeRow();
    EXPECT_EQ(Text(L"version"), L"App version 1.0.2");
    EXPECT_EQ(Text(L"desName"), L"Drawing pen");
    EXPECT_EQ(Attribute(L"imageLabel", L"bkimage"), L"file='drawable/pen.svg'");
    EXPECT_EQ(Text(L"X1devInfo"), L"one\ntwo\n");
    EXPECT_EQ(Control(L"X1devInfo").GetFont(), 9);
    EXPECT_EQ(Attribute(L"X1devInfo", L"textcolor"), L"99000000");
    EXPECT_EQ(Attribute(L"X1devInfo", L"width"), L"400");
    EXPECT_TRUE(Shown(L"X1devInfo"));
}

TEST_F(FirmwareForm, ADriverHasTheDriverWording) {
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.isDriver = true;
    MakeRow(desc);
    EXPECT_EQ(Text(L"version"), L"Driver version 1.0.2");
}

TEST_F(FirmwareForm, AVersionTextWithoutPlaceholderShowsNothing) {
    SetTextOf(L"IDS_ACCESSORIES_APP_VERSION", L"Version");
    MakeRow();
    EXPECT_EQ(Text(L"version"), L"");
}

TEST_F(FirmwareForm, TheDividerStandsAboveTheInformation) {
    MakeRow();
    DuiLib::CControlUI* const divider = RowInspector::Divider(*row);
    auto* const column = dynamic_cast<DuiLib::CContainerUI*>(&Control(L"X1ver"));
    ASSERT_NE(column, nullptr);
    EXPECT_EQ(column->GetItemAt(column->GetCount() - 2), divider);
    EXPECT_EQ(column->GetItemAt(column->GetCount() - 1), &Control(L"X1devInfo"));
    EXPECT_EQ(divider->GetFixedHeight(), 1);
    EXPECT_EQ(divider->GetFixedWidth(), 400);
    EXPECT_EQ(divider->GetAttribute(L"bkcolor"), L"#0F000000");
    EXPECT_EQ(divider->GetAttribute(L"padding"), L"0,0,0,8");
    EXPECT_TRUE(divider->IsVisible());
}

TEST_F(FirmwareForm, ReportsItsHeightOnceAs77AndLogsIt) {
    MakeRow();
    EXPECT_THAT(heights, ElementsAre(HeightReport{77, true, true}));
    EXPECT_EQ(RowInspector::RowHeight(*row), 77);
    EXPECT_EQ(Attribute(L"X1hor", L"height"), L"92");  // two lines of 20, and 52
    EXPECT_THAT(Logged(3), ElementsAre(L"[AccessoryLog]InitForm start(DuiLib::AccessoriesFirwareWnd::InitForm)",
                                       L"[AccessoryLog]setting upgrade update button width: 120"
                                       L"(DuiLib::AccessoriesFirwareWnd::InitUpdateButton)",
                                       L"[AccessoryLog]init verHeight:77(DuiLib::AccessoriesFirwareWnd::InitForm)"));
    EXPECT_EQ(Count(seam::Kind::kReportInit), 1u);
    EXPECT_EQ(seam::Get().events.back().number, 0);
    EXPECT_EQ(seam::Get().events.back().text, "");
}

TEST_F(FirmwareForm, ANullPaintManagerHostOrParentMakesNoControlAndLogsNothing) {
    for (int null = 0; null < 3; ++null) {
        Forget();
        AccessoriesFirwareWnd fresh;
        fresh.InitFirmwareLayout(null == 0 ? nullptr : m_page.Manager(), null == 1 ? nullptr : m_page.Pump(),
                                 null == 2 ? nullptr : m_page.Parent(), Pen());
        EXPECT_EQ(m_page.Parent()->GetCount(), 0);
        EXPECT_THAT(Logged(), IsEmpty());
        EXPECT_EQ(Count(seam::Kind::kClientCreated), 1u) << "the client is made first of all";
    }
}

TEST_F(FirmwareForm, AMissingLayoutFileIsLogged) {
    UseLayouts({{}, true, false});
    ExpectFailureLine(L"firware item fail to create control");
    DuiLib::SetDiagnosticSink([](const std::string&) {});
    MakeRow();
    DuiLib::SetDiagnosticSink({});
    EXPECT_THAT(Logged(4), ElementsAre(L"[AccessoryLog]firware item fail to create control"
                                       L"(DuiLib::AccessoriesFirwareWnd::InitFirmwareLayout)"));
    EXPECT_EQ(m_page.Parent()->GetCount(), 0);
    EXPECT_EQ(Count(seam::Kind::kReportInit), 0u);
}

TEST_F(FirmwareForm, WithoutUpdateBtnNothingElseIsBoundAndNoHeightIsReported) {
    UseLayouts({{"updateBtn"}, true, true});
    ExpectFailureLine(L" devInfo is nullptr");
    MakeRow();
    EXPECT_NE(m_page.Find(L"stopBtn"), nullptr) << "keeps its name";
    EXPECT_EQ(m_page.Find(L"X1devInfo"), nullptr);
    EXPECT_THAT(Logged(4), ElementsAre(Line(L" devInfo is nullptr", L"SettingDevInfo")));
    EXPECT_THAT(Logged(3), ElementsAre(L"[AccessoryLog]InitForm start(DuiLib::AccessoriesFirwareWnd::InitForm)"));
    EXPECT_THAT(heights, IsEmpty());
    EXPECT_EQ(Text(L"version"), L"App version 1.0.2");
    EXPECT_EQ(Text(L"desName"), L"Drawing pen");
    EXPECT_EQ(Attribute(L"imageLabel", L"bkimage"), L"file='drawable/pen.svg'");
}

TEST_F(FirmwareForm, WithoutVerNoHeightIsReportedAndTheStartWorks) {
    UseLayouts({{"ver"}, true, true});
    ExpectFailureLine(L" devInfo is nullptr");
    MakeRow();
    EXPECT_THAT(Logged(4), ElementsAre(Line(L" devInfo is nullptr", L"SettingDevInfo")));
    EXPECT_THAT(heights, IsEmpty());
    Forget();
    Click(L"X1updateBtn");
    EXPECT_TRUE(Shown(L"X1progress"));
    EXPECT_THAT(Posted(), ElementsAre("B20001 B20022 X1\\0", "B20018 B20033 X1\\0"));
}

TEST_F(FirmwareForm, WithoutProgressBtnTheProgressLabelKeepsItsNameAndTheWidthIsSet) {
    UseLayouts({{"progressBtn"}, true, true});
    MakeRow();
    EXPECT_NE(m_page.Find(L"X1progressLayout"), nullptr);
    EXPECT_NE(m_page.Find(L"progressLabel"), nullptr);
    EXPECT_EQ(m_page.Find(L"X1progressLabel"), nullptr);
    EXPECT_EQ(RowInspector::BarWidth(*row), 120);
    EXPECT_EQ(Attribute(L"X1updateBtn", L"width"), L"120");
    EXPECT_FALSE(Control(L"progressLabel").HasAttribute(L"width"));
}

TEST_F(FirmwareForm, AHorOrVerThatCannotHoldControlsCountsAsMissing) {
    ExpectFailureLine(L" devInfo is nullptr");
    for (const wchar_t* const name : {L"hor", L"ver"}) {
        UseLayouts({{}, true, true, {std::string(name, name + 3)}});
        m_page.Discard();
        Forget();
        MakeRow();
        EXPECT_NE(m_page.Find(name), nullptr) << "keeps its name";
        EXPECT_EQ(m_page.Find(std::wstring(L"X1") + name), nullptr);
        EXPECT_NE(m_page.Find(L"pulldown"), nullptr) << "comes behind it";
        EXPECT_THAT(Logged(4), ElementsAre(Line(L" devInfo is nullptr", L"SettingDevInfo")));
        EXPECT_THAT(heights, IsEmpty());
    }
}

struct MissingName {
    const char* name;
    const wchar_t* line;  // logged at level 4
};

TEST_F(FirmwareForm, AMissingTextOrPictureIsLogged) {
    const MissingName cases[] = {
        {"version", L"[AccessoryLog] version wrong nullptr(DuiLib::AccessoriesFirwareWnd::InitForm)"},
        {"desName", L"[AccessoryLog] desName wrong nullptr(DuiLib::AccessoriesFirwareWnd::InitForm)"},
        {"imageLabel",
         L"[AccessoryLog]AccessoriesFirwareWnd::SetImagePath imageLabel is nullptr"
         L"(DuiLib::AccessoriesFirwareWnd::SetImagePath)"},
    };
    for (const MissingName& c : cases) {
        ExpectFailureLine(c.line);
        UseLayouts({{c.name}, true, true});
        Forget();
        m_page.Discard();
        MakeRow();
        EXPECT_THAT(Logged(4), ElementsAre(c.line)) << c.name;
    }
}

TEST_F(FirmwareForm, AtScale125TheInformationIsMeasuredAt340AndTheRowHasItsHeight) {
    UseScale(125);
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.devInfo = std::wstring(35, L'x');  // 34 cells of 10 pixels fit into 340
    MakeRow(desc);
    EXPECT_EQ(RowInspector::DevInfoHeight(*row), 2 * 25);
    EXPECT_EQ(Control(L"X1devInfo").GetFixedHeight(), 50);
    EXPECT_EQ(Attribute(L"X1hor", L"height"), std::to_wstring(50 * 100 / 125 + 52));

    m_page.Discard();
    desc.devInfo.pop_back();
    MakeRow(desc);
    EXPECT_EQ(RowInspector::DevInfoHeight(*row), 25) << "one line";
}

TEST_F(FirmwareForm, AtScale90TheDivisorIs100) {
    UseScale(90);
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.devInfo = std::wstring(3777, L'x');  // 27200 pixels hold 3777 cells of 7.2
    MakeRow(desc);
    EXPECT_EQ(RowInspector::DevInfoHeight(*row), 18) << "one line";
    EXPECT_EQ(Attribute(L"X1hor", L"height"), L"52") << "a hundredth of 18, and 52";

    m_page.Discard();
    desc.devInfo += L'x';
    MakeRow(desc);
    EXPECT_EQ(RowInspector::DevInfoHeight(*row), 36) << "two lines";
}

TEST_F(FirmwareForm, TheRowsHeightIsDividedInSinglePrecision) {
    UseScale(120);
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.devInfo = L"1\n2\n3\n";
    MakeRow(desc);
    EXPECT_EQ(RowInspector::DevInfoHeight(*row), 72);
    EXPECT_EQ(Attribute(L"X1hor", L"height"), L"111") << "in double precision it would be 112";
}

TEST_F(FirmwareForm, TwoPanelsUnderOnePaintManagerKeepDistinctNames) {
    MakeRow();
    const auto first = std::move(row);
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.deviceKey = L"X2";
    MakeRow(desc);
    for (const wchar_t* name : {L"updateBtn", L"stopBtn", L"progress", L"hor", L"ver", L"pulldown", L"progressLayout",
                                L"progressBtn", L"progressLabel", L"devInfo"}) {
        EXPECT_NE(&Control(std::wstring(L"X1") + name), &Control(std::wstring(L"X2") + name));
    }
    EXPECT_NE(RowInspector::VirtualWndName(*first), RowInspector::VirtualWndName(*row));
    EXPECT_EQ(RowInspector::VirtualWndName(*row), std::to_wstring(reinterpret_cast<std::uintptr_t>(row.get())));
    m_page.Discard();
}

TEST_F(FirmwareForm, AnEmptyHeightCallbackThrowsBadFunctionCall) {
    const kernel::UiTurn turn;
    row = std::make_unique<AccessoriesFirwareWnd>();
    EXPECT_THROW(row->InitFirmwareLayout(m_page.Manager(), m_page.Pump(), m_page.Parent(), Pen()),
                 std::bad_function_call);
}

TEST_F(FirmwareForm, TheRowNameSurvivesItsOwnAssignment) {
    MakeRow();
    row->SetRowName(L"a rather long name of a row");
    row->SetRowName(RowInspector::RowName(*row));
    EXPECT_EQ(RowInspector::RowName(*row), L"a rather long name of a row");
}

TEST_F(FirmwareForm, TheClientIsMadeWithThePagesEndpointAndPipe) {
    MakeRow();
    ASSERT_EQ(seam::Get().clients.size(), 1u);
    EXPECT_EQ(seam::Get().clients[0].endpointId, 0x270000);
    EXPECT_TRUE(seam::Get().clients[0].receives);
    EXPECT_FALSE(seam::Get().clients[0].exclusive);
    EXPECT_EQ(seam::Get().clients[0].pipeName, L"\\\\.\\Pipe\\iKorvelAssistant");
    EXPECT_TRUE(seam::Get().callbacks.empty()) << "all messages come through the list window";
    ASSERT_NE(RowInspector::Sender(*row), nullptr);
    EXPECT_EQ(RowInspector::Sender(*row)->endpointId, 0x270000);
    EXPECT_EQ(RowInspector::Sender(*row)->client, RowInspector::Client(*row));
    EXPECT_NE(RowInspector::Client(*row), nullptr);
}

TEST_F(FirmwareForm, ThePanelsEndIsItsClientsEnd) {
    MakeRow();
    m_page.Discard();
    EXPECT_EQ(Count(seam::Kind::kClientDestroyed), 0u);
    row.reset();
    EXPECT_EQ(Count(seam::Kind::kClientDestroyed), 1u);
}

struct FailedAllocation {
    int nth;
    const wchar_t* line;
};

TEST_F(FirmwareForm, FailedAllocationsOfTheIpcSideAreLoggedAndTheRowGoesOn) {
    const FailedAllocation cases[] = {
        {1, L"InitIpcCallBack new objIPCClientPtr failed,objIPCClientPtr is nullptr"},
        {2, L"InitIpcCallBack new ipcClient failed,ipcClient is nullptr"},
        {3, L"InitIpcCallBack new ipcReciever failed,ipcReciever is nullptr"},
    };
    for (const FailedAllocation& c : cases) {
        ExpectFailureLine(c.line);
        m_page.Discard();
        Forget();
        const NothrowFailure failure(c.nth);
        MakeRow();
        EXPECT_TRUE(failure.Happened());
        EXPECT_THAT(Logged(4), ElementsAre(std::wstring(L"[AccessoryLog]") + c.line +
                                           L"(DuiLib::AccessoriesFirwareWnd::ResigterFirmwareCallBacks)"));
        EXPECT_EQ(RowInspector::Client(*row) != nullptr, c.nth > 1);
        EXPECT_EQ(RowInspector::Sender(*row) != nullptr, c.nth > 2);
        EXPECT_EQ(RowInspector::Callbacks(*row), nullptr);
        EXPECT_EQ(Text(L"version"), L"App version 1.0.2");
        Forget();
        Click(L"X1updateBtn");
        EXPECT_EQ(Posted().size(), c.nth == 1 ? 0u : 2u);
    }
}

TEST_F(FirmwareForm, FailedAllocationsOfTheInformationControlsLeaveTheRestUsable) {
    for (const int nth : {4, 5}) {  // the text, the divider
        if (nth == 4) ExpectFailureLine(L" devInfo is nullptr");
        m_page.Discard();
        heights.clear();
        const NothrowFailure failure(nth);
        MakeRow();
        EXPECT_TRUE(failure.Happened());
        EXPECT_THAT(heights, IsEmpty());
        Click(L"X1pulldown");
        Click(L"X1updateBtn");
        row->UpdateDownloadForm();
    }
}

}  // namespace
