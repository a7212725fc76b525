#include <gmock/gmock.h>

#include "nothrow_failure.h"
#include "page_window_fixture.h"
#include "row_fixture.h"

namespace {

using DuiLib::g_updateItemList;
using DuiLib::PageInspector;
using testing::ElementsAre;
using testing::IsEmpty;

using Rows = std::vector<std::pair<std::wstring, std::wstring>>;

class ListIntake : public PageWindowFixture {
protected:
    DuiLib::CContainerUI& List() { return dynamic_cast<DuiLib::CContainerUI&>(Control(L"accessVer")); }
};

TEST_F(ListIntake, AnEmptyListHidesTheHeadingAndSendsNothing) {
    MakeWindow();
    auto* const old = new DuiLib::CLabelUI;
    List().Add(old);
    Forget();
    DeliverList({});
    EXPECT_FALSE(Shown(L"topName"));
    EXPECT_EQ(PageInspector::FirmwareNum(*window), 0);
    EXPECT_EQ(List().GetCount(), 0);
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_THAT(Logged(4), ElementsAre(L"[AccessoryLog]RecAllUpdateData size : 0"
                                       L"(DuiLib::AccessoriesUpdateWnd::RecAllUpdateData)"));
    EXPECT_THAT(Logged(3), ElementsAre(L"[AccessoryLog]firmwareNum:0(DuiLib::AccessoriesUpdateWnd::RecAllUpdateData)"));
}

TEST_F(ListIntake, AnEmptyListWithoutAHeadingStopsThere) {
    UseLayouts({{"topName"}, true, true});
    MakeWindow();
    Forget();
    DeliverList({});
    EXPECT_THAT(Logged(3), IsEmpty());
}

TEST_F(ListIntake, ASecondListOfAnySizeIsOnlyLogged) {
    MakeWindow();
    DeliverList({Accessory("X1")});
    for (const auto& list : {std::vector<AccessoryVersionDataInfo>{}, {Accessory("X2"), Accessory("X3")}}) {
        Forget();
        DeliverList(list);
        EXPECT_THAT(Logged(3), IsEmpty());
        EXPECT_THAT(Logged(4), ElementsAre(L"[AccessoryLog]Rev Other Ipc msg size:" + std::to_wstring(list.size()) +
                                           L"(DuiLib::AccessoriesUpdateWnd::RecAllUpdateData)"));
        EXPECT_EQ(List().GetCount(), 1);
    }
}

TEST_F(ListIntake, ThreeRecordsGiveRowsInOrderWithTwoSeparators) {
    MakeWindow();
    Forget();
    DeliverList({Accessory("X1"), Accessory("b"), Accessory("A")});
    ASSERT_EQ(List().GetCount(), 5);
    EXPECT_EQ(List().GetItemAt(1), &Control(L"X1_0"));
    EXPECT_EQ(List().GetItemAt(3), &Control(L"b_1"));
    EXPECT_EQ(g_updateItemList,
              (Rows{{L"X1", L"Device"}, {L"X1_0", L"Line"}, {L"b", L"Device"}, {L"b_1", L"Line"}, {L"A", L"Device"}}));
    EXPECT_EQ(PageInspector::FirmwareNum(*window), 3);
    EXPECT_EQ(PageInspector::TotalHeight(*window), 3 * 77);
    EXPECT_THAT(Posted(), ElementsAre("1B0000 3A0066 77", "1B0000 3A0066 154", "1B0000 3A0066 231"));
    EXPECT_THAT(Slept(), ElementsAre(100, 100, 100));
    EXPECT_EQ(Logged(4).front(),
              L"[AccessoryLog]RecAllUpdateData size : 3"
              L"(DuiLib::AccessoriesUpdateWnd::RecAllUpdateData)");
    EXPECT_EQ(Logged(3).front(), L"[AccessoryLog]firmwareNum:3(DuiLib::AccessoriesUpdateWnd::RecAllUpdateData)");
}

TEST_F(ListIntake, ASeparatorHasItsLook) {
    MakeWindow();
    DeliverList({Accessory("X1"), Accessory("X2")});
    EXPECT_EQ(Control(L"X1_0").GetFixedHeight(), 1);
    EXPECT_EQ(Control(L"X1_0").GetFixedWidth(), 560);
    EXPECT_EQ(Attribute(L"X1_0", L"bkcolor"), L"#0F000000");
    EXPECT_EQ(Attribute(L"X1_0", L"padding"), L"16,0,16,0");
    EXPECT_TRUE(Shown(L"X1_0"));
}

struct JoinCase {
    std::vector<std::wstring> lines;
    const wchar_t* text;
};

TEST_F(ListIntake, OneLineStaysAsItIsAndMoreLinesEachEndWithALineFeed) {
    const JoinCase cases[] = {
        {{}, L""}, {{L"one"}, L"one"}, {{L"one", L"two"}, L"one\ntwo\n"}, {{L"", L"", L"x"}, L"\n\nx\n"}};
    for (const JoinCase& c : cases) {
        m_page.Discard();
        MakeWindow();
        DeliverList({Accessory("X1", c.lines)});
        EXPECT_EQ(Text(L"X1devInfo"), c.text);
        EXPECT_EQ(DuiLib::RowInspector::DevInfoLines(*PageInspector::Rows(*window).at("X1")), c.lines.size());
    }
}

TEST_F(ListIntake, RowsAreFoldedAfterTheLastRecordInTheOrderOfTheirKeys) {
    MakeWindow();
    Forget();
    DeliverList({Accessory("b", {L"x"}), Accessory("A", {L"x", L"y"})});
    EXPECT_FALSE(Shown(L"AdevInfo"));
    EXPECT_FALSE(Shown(L"bdevInfo"));
    EXPECT_EQ(Logged(3).back(), L"[AccessoryLog] reduce hor :52(DuiLib::AccessoriesFirwareWnd::UpdateDownloadForm)");
    std::vector<std::string> keys;
    for (const auto& [key, row] : PageInspector::Rows(*window)) keys.push_back(key);
    EXPECT_THAT(keys, ElementsAre("A", "b"));
}

TEST_F(ListIntake, TwoRecordsOfOneKeyGiveTwoRowsOfWhichTheLaterIsReached) {
    MakeWindow();
    DeliverList({Accessory("X1"), Accessory("X1"), Accessory("X2")});
    EXPECT_EQ(List().GetCount(), 5);
    EXPECT_EQ(PageInspector::Rows(*window).size(), 2u);
    EXPECT_EQ(PageInspector::Lines(*window).at("X1"), &Control(L"X1_1"));
    EXPECT_TRUE(Shown(L"X1_0"));
    DeliverFinish("X1");
    EXPECT_FALSE(Shown(L"X1_1"));
}

TEST_F(ListIntake, WithoutTheContainerNothingIsBuilt) {
    UseLayouts({{"accessVer"}, true, true});
    MakeWindow();
    Forget();
    DeliverList({Accessory("X1")});
    EXPECT_EQ(Logged().size(), 2u);
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_TRUE(g_updateItemList.empty());
}

TEST_F(ListIntake, ARowThatCannotBeMadeEndsTheBuildAndEarlierRowsStay) {
    MakeWindow();
    Forget();
    std::vector<AccessoryVersionDataInfo> list = {Accessory("X1"), Accessory("X2"), Accessory("X3")};
    const NothrowFailure failure(7 + 1);  // seven for the first row and its separator, then the second row
    window->RecAllUpdateData(list);
    ASSERT_TRUE(failure.Happened());
    EXPECT_EQ(PageInspector::Rows(*window).size(), 1u);
    EXPECT_EQ(List().GetCount(), 2);
    EXPECT_TRUE(Shown(L"X1devInfo")) << "rows are not folded";
    EXPECT_EQ(g_updateItemList, (Rows{{L"X1", L"Device"}, {L"X1_0", L"Line"}, {L"X2", L"Device"}}))
        << "the row that was not built stays in the list";
}

TEST_F(ListIntake, ASeparatorThatCannotBeMadeIsLeftOutSilently) {
    MakeWindow();
    Forget();
    std::vector<AccessoryVersionDataInfo> list = {Accessory("X1"), Accessory("X2")};
    const NothrowFailure failure(7);
    window->RecAllUpdateData(list);
    ASSERT_TRUE(failure.Happened());
    EXPECT_EQ(List().GetCount(), 2);
    EXPECT_EQ(Count(seam::Kind::kClientCreated), 2u);
    EXPECT_EQ(g_updateItemList, (Rows{{L"X1", L"Device"}, {L"X2", L"Device"}}));
}

TEST_F(ListIntake, HeightChangesAddUpAndCanGoBelowZero) {
    MakeWindow();
    Forget();
    window->OnRowHeightChanged(10, true, true);
    window->OnRowHeightChanged(22, false, false);
    EXPECT_THAT(Posted(), ElementsAre("1B0000 3A0066 10", "1B0000 3A0066 -12"));
    EXPECT_THAT(Slept(), ElementsAre(100, 100));
}

TEST_F(ListIntake, AWindowWithoutClientAddsHeightsUpInSilenceAndDoesNotCountDown) {
    ExpectFailureLine(L"objIPCClientPtr is nullptr.");
    {
        const NothrowFailure failure(1);
        MakeWindow();
        ASSERT_TRUE(failure.Happened());
    }
    ASSERT_EQ(PageInspector::Client(*window), nullptr);
    std::vector<AccessoryVersionDataInfo> list = {Accessory("X1")};
    window->RecAllUpdateData(list);
    Forget();
    window->OnRowHeightChanged(10, true, true);
    window->OnRowHeightChanged(22, false, false);
    EXPECT_EQ(PageInspector::TotalHeight(*window), 77 + 10 - 22);
    window->OnRowFinished();
    EXPECT_EQ(PageInspector::FirmwareNum(*window), 1);
    EXPECT_TRUE(seam::Get().events.empty()) << "neither post nor pause";
}

TEST_F(ListIntake, TheEndOfTheLastRowTellsTheHostThatNothingIsLeft) {
    MakeWindow();
    DeliverList({Accessory("X1"), Accessory("X2")});
    Forget();
    DeliverFinish("X1");
    EXPECT_THAT(Posted(), ElementsAre("1B0000 3A0066 78", "B20018 B20034 X1\\0"));
    Forget();
    DeliverFinish("X2");
    EXPECT_THAT(Posted(), ElementsAre("1B0000 3A0066 2", "20000 2271D 0", "1B0000 3A0066 0", "B20018 B20034 X2\\0"));
    EXPECT_THAT(Slept(), ElementsAre(2000, 100)) << "no wait behind the last height";
    EXPECT_FALSE(Shown(L"DeviceUpdateTitle"));
}

}  // namespace
