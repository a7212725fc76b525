// A row's set-up where the replayed scenarios do not see it: what has no name, what is passed to the platform, what
// fails.
#include <gmock/gmock.h>

#include "nothrow_failure.h"
#include "row_fixture.h"

namespace {

using DuiLib::AccessoriesFirwareWnd;
using DuiLib::RowInspector;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class RowForm : public RowFixture {};

TEST_F(RowForm, TheNumberOfLinesIsTakenFromTheDescription) {
    MakeRow();
    EXPECT_EQ(RowInspector::DevInfoLines(*row), 2u);
}

TEST_F(RowForm, TheDividerStandsAboveTheInformation) {
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

TEST_F(RowForm, ANullPaintManagerHostOrParentMakesNoControlAndLogsNothing) {
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

TEST_F(RowForm, WithoutItsNameOrItsTextsTheRowIsLeftAsItIs) {
    ExpectFailureLine(L"desName wrong nullptr");
    UseLayouts({{"desName"}, true, true});
    MakeRow();
    EXPECT_THAT(Logged(4), ElementsAre(Line(L" desName wrong nullptr", L"InitForm")));
    EXPECT_EQ(Text(L"version"), L"App version 1.0.2") << "comes first";
    EXPECT_FALSE(Control(L"imageLabel").HasAttribute(L"bkimage"));
    EXPECT_NE(m_page.Find(L"updateBtn"), nullptr) << "keeps its name";
    EXPECT_THAT(heights, IsEmpty());
}

TEST_F(RowForm, TwoRowsUnderOnePaintManagerHaveTheirAddressesAsVirtualWindows) {
    MakeRow();
    AccessoriesFirwareWnd second;
    second.SetHeightCallBack([](int, bool, bool) {});
    DuiLib::FirmwareItemDesc desc = Pen();
    desc.deviceKey = L"X2";
    second.InitFirmwareLayout(m_page.Manager(), m_page.Pump(), m_page.Parent(), desc);
    const AccessoriesFirwareWnd* const rows[] = {row.get(), &second};
    for (int i = 0; i < 2; ++i) {
        const std::wstring name = std::to_wstring(reinterpret_cast<std::uintptr_t>(rows[i]));
        EXPECT_EQ(m_page.Parent()->GetItemAt(i)->GetVirtualWnd(), name);
        EXPECT_TRUE(m_page.Pump()->RemoveVirtualWnd(name));
    }
    m_page.Discard();
}

TEST_F(RowForm, AnEmptyHeightCallbackThrowsBadFunctionCall) {
    const kernel::UiTurn turn;
    row = std::make_unique<AccessoriesFirwareWnd>();
    EXPECT_THROW(row->InitFirmwareLayout(m_page.Manager(), m_page.Pump(), m_page.Parent(), Pen()),
                 std::bad_function_call);
}

TEST_F(RowForm, TheRowNameSurvivesItsOwnAssignment) {
    MakeRow();
    row->SetRowName(L"a rather long name of a row");
    row->SetRowName(RowInspector::RowName(*row));
    EXPECT_EQ(RowInspector::RowName(*row), L"a rather long name of a row");
}

TEST_F(RowForm, TheReportIsSetUpWithoutFolder) {
    MakeRow();
    EXPECT_EQ(seam::Get().events.back().kind, seam::Kind::kReportInit) << "last of all";
    EXPECT_EQ(seam::Get().events.back().number, 0);
    EXPECT_EQ(seam::Get().events.back().text, "");
}

TEST_F(RowForm, TheClientIsMadeWithThePagesEndpointAndPipe) {
    MakeRow();
    ASSERT_EQ(seam::Get().clients.size(), 1u);
    EXPECT_EQ(seam::Get().clients[0].endpointId, 0x270000);
    EXPECT_TRUE(seam::Get().clients[0].receives);
    EXPECT_FALSE(seam::Get().clients[0].exclusive);
    EXPECT_EQ(seam::Get().clients[0].pipeName, L"\\\\.\\Pipe\\iKorvelAssistant");
    EXPECT_TRUE(seam::Get().callbacks.empty()) << "all messages come through the list window";
    EXPECT_NE(RowInspector::Client(*row), nullptr);
}

TEST_F(RowForm, TheRowsEndIsItsClientsEndAndTheHandleOutlivesBoth) {
    MakeRow();
    const IPCMessageClient* const client = RowInspector::Client(*row);
    const IPCClientHandle* const handle = RowInspector::Sender(*row);
    ASSERT_NE(handle, nullptr);
    m_page.Discard();
    EXPECT_EQ(Count(seam::Kind::kClientDestroyed), 0u);
    row.reset();
    EXPECT_EQ(Count(seam::Kind::kClientDestroyed), 1u);
    std::vector<std::unique_ptr<IPCClientHandle>> later;  // one of them would lie where a freed handle lay
    for (int i = 0; i < 64; ++i) later.push_back(std::make_unique<IPCClientHandle>());
    for (const auto& other : later) EXPECT_NE(other.get(), handle);
    EXPECT_EQ(handle->endpointId, 0x270000);
    EXPECT_EQ(handle->client, client);
}

TEST_F(RowForm, FailedAllocationsOfTheIpcSideAreLoggedAndTheRowGoesOn) {
    const FailedAllocation cases[] = {
        {1, L"InitIpcCallBack new objIPCClientPtr failed,objIPCClientPtr is nullptr"},
        {2, L"InitIpcCallBack new ipcClient failed,ipcClient is nullptr"},
        {3, L"InitIpcCallBack new ipcReciever failed,ipcReciever is nullptr"},
    };
    for (const FailedAllocation& c : cases) {
        ExpectFailureLine(c.line);
        Forget();
        const NothrowFailure failure(c.nth);
        MakeRow();
        EXPECT_TRUE(failure.Happened());
        EXPECT_THAT(Logged(4), ElementsAre(Line(c.line, L"ResigterFirmwareCallBacks")));
        EXPECT_EQ(RowInspector::Client(*row) != nullptr, c.nth > 1);
        EXPECT_EQ(RowInspector::Sender(*row) != nullptr, c.nth > 2);
        EXPECT_EQ(RowInspector::Callbacks(*row), nullptr);
        EXPECT_EQ(Text(L"version"), L"App version 1.0.2");
        Forget();
        Do("update");
        EXPECT_EQ(Posted().size(), c.nth == 1 ? 0u : 2u);
        EXPECT_THAT(Logged(3), Contains(Line(L"update : X1", L"SendUIPluginUpdate"))) << "without a client too";
    }
}

TEST_F(RowForm, FailedAllocationsOfTheInformationControlsLeaveTheRestUsable) {
    for (const int nth : {4, 5}) {  // the text, the divider
        if (nth == 4) ExpectFailureLine(L" devInfo is nullptr");
        const NothrowFailure failure(nth);
        MakeRow();
        EXPECT_TRUE(failure.Happened());
        EXPECT_THAT(heights, IsEmpty());
        Do("pulldown update");
        row->UpdateDownloadForm();
        EXPECT_THAT(heights, IsEmpty());
        EXPECT_TRUE(Shown(L"X1progress"));
    }
}

}  // namespace
