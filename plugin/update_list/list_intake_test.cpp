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

TEST_F(ListIntake, AnEmptyListHidesTheHeadingEmptiesThePageAndCountsNothing) {
    MakeWindow();
    List().Add(new DuiLib::CLabelUI);
    PageInspector::FinishRow(*window);
    ASSERT_EQ(PageInspector::FirmwareNum(*window), -1);
    Forget();
    DeliverList({});
    EXPECT_FALSE(Shown(L"topName"));
    EXPECT_EQ(PageInspector::FirmwareNum(*window), 0);
    EXPECT_EQ(List().GetCount(), 0);
    EXPECT_THAT(Posted(), IsEmpty());
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
        EXPECT_EQ(seam::Get().events.size(), 1u) << "no post, no wait, no client";
        EXPECT_THAT(Logged(4), ElementsAre(L"[AccessoryLog]Rev Other Ipc msg size:" + std::to_wstring(list.size()) +
                                           L"(DuiLib::AccessoriesUpdateWnd::RecAllUpdateData)"));
        EXPECT_EQ(List().GetCount(), 1);
        EXPECT_EQ(g_updateItemList.size(), 1u);
        EXPECT_TRUE(Shown(L"topName"));
        EXPECT_EQ(PageInspector::FirmwareNum(*window), 1);
        EXPECT_EQ(PageInspector::TotalHeight(*window), 77);
        EXPECT_EQ(PageInspector::BuildIndex(*window), 0);
        EXPECT_EQ(PageInspector::Rows(*window).size(), 1u);
    }
}

TEST_F(ListIntake, APageWithoutItsPlaceInTheHostTakesTheListAndBuildsNothing) {
    MakeWindow();
    PageInspector::ForgetParent(*window);
    Forget();
    DeliverList({Accessory("X1")});
    EXPECT_EQ(seam::Get().events.size(), 1u) << "only the line with the size";
    EXPECT_EQ(PageInspector::FirmwareNum(*window), 0);
    EXPECT_EQ(List().GetCount(), 0);
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

TEST_F(ListIntake, TwoRecordsOfOneKeyGiveTwoRowsOfWhichTheLaterIsReached) {
    MakeWindow();
    DeliverList({Accessory("X1"), Accessory("X1"), Accessory("X2")});
    ASSERT_EQ(List().GetCount(), 5);
    EXPECT_EQ(PageInspector::Rows(*window).size(), 2u);
    const std::wstring later = List().GetItemAt(2)->GetVirtualWnd().Str();
    EXPECT_EQ(std::to_wstring(reinterpret_cast<std::uintptr_t>(PageInspector::Rows(*window).at("X1"))), later);
    DeliverProgress("X1", 37);
    EXPECT_EQ(Text(L"X1progress"), L"37%") << "the later one took the names";
    DeliverFinish("X1");
    EXPECT_FALSE(Shown(L"X1_1")) << "the separator of the later one";
    EXPECT_FALSE(Shown(L"X1_0")) << "the neighbour of the key's first entry in the row list";
    EXPECT_FALSE(Shown(L"X1hor"));
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
    PageInspector::ChangeHeight(*window, 10, true, true);
    PageInspector::ChangeHeight(*window, 22, false, false);
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
    PageInspector::ChangeHeight(*window, 10, true, true);
    PageInspector::ChangeHeight(*window, 22, false, false);
    EXPECT_EQ(PageInspector::TotalHeight(*window), 77 + 10 - 22);
    PageInspector::FinishRow(*window);
    EXPECT_EQ(PageInspector::FirmwareNum(*window), 1);
    EXPECT_TRUE(seam::Get().events.empty()) << "neither post nor pause";
}

}  // namespace
