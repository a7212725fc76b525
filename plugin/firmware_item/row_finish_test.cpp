#include <gmock/gmock.h>

#include "row_fixture.h"
#include "update_list/row_list.h"

namespace {

using DuiLib::g_updateItemList;
using DuiLib::RowInspector;
using testing::ElementsAre;
using testing::IsEmpty;

using Rows = std::vector<std::pair<std::wstring, std::wstring>>;

class FirmwareFinish : public RowFixture {
protected:
    FirmwareFinish() { MakeRow(); }
};

TEST_F(FirmwareFinish, TheEndShowsWaitsCollapsesAndTellsInThisOrder) {
    Download(100);
    heights.clear();
    bool stillThere = false;
    seam::Get().onSleep = [&](std::uint32_t) {
        stillThere = Shown(L"X1hor") && Text(L"X1progress") == L"Up to date" && heights.empty() && finished == 0;
    };
    row->SetFinishProcess();
    EXPECT_TRUE(stillThere);
    EXPECT_THAT(Slept(), ElementsAre(2000));
    EXPECT_THAT(heights, ElementsAre(HeightReport{92 + 24, false, false})) << "unfolded, information of two lines";
    EXPECT_FALSE(Shown(L"X1hor"));
    EXPECT_EQ(finished, 1);
    EXPECT_THAT(Logged(3), ElementsAre(Line(L"set update btn finish", L"SetFinishProcess"),
                                       Line(L"update finish: X1", L"SendUIPluginUpdateFinish")));
    EXPECT_THAT(Logged(4), IsEmpty());
    EXPECT_THAT(Posted(), ElementsAre("B20018 B20034 X1\\0"));
    EXPECT_FALSE(Shown(L"X1progressLabel"));
    EXPECT_EQ(Control(L"X1progress").GetFont(), 9);
    EXPECT_EQ(Attribute(L"X1progress", L"bkround"), L"28,28");
    EXPECT_EQ(Attribute(L"X1progress", L"bkcolor"), L"0C000000");
    EXPECT_EQ(Attribute(L"X1progress", L"textcolor"), L"#FF0A59F7");
    EXPECT_EQ(Attribute(L"X1progress", L"bordersize"), L"0");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"width"), L"120");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"bkround"), L"28,28");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"bordersize"), L"0");
    EXPECT_EQ(ToolTip(L"X1stopBtn"), L"Up to date");
    EXPECT_EQ(RowInspector::ProgressRecord(*row), L"2001");
}

TEST_F(FirmwareFinish, TheEndOfARowInAHiddenPageGivesBackItsWholeHeight) {
    Click(L"X1pulldown");
    heights.clear();
    m_page.Parent()->SetVisible(false);
    row->SetFinishProcess();
    EXPECT_THAT(heights, ElementsAre(HeightReport{52 + 24, false, false}));
}

// Deliberate: nothing remembers that the row has ended.
TEST_F(FirmwareFinish, ASecondEndOfTheSameRowGivesBack24AndIsToldAgain) {
    row->SetFinishProcess();
    heights.clear();
    Forget();
    row->SetFinishProcess();
    EXPECT_THAT(heights, ElementsAre(HeightReport{24, false, false})) << "the row itself is hidden";
    EXPECT_EQ(finished, 2);
    EXPECT_THAT(Slept(), ElementsAre(2000));
    EXPECT_THAT(Posted(), ElementsAre("B20018 B20034 X1\\0"));
}

TEST_F(FirmwareFinish, BelowAHundredPercentTheEndGivesBackAHundredthOfTheHeightAnd24) {
    UseScale(50);
    row->UpdateDownloadForm();  // 26 device pixels
    heights.clear();
    row->SetFinishProcess();
    EXPECT_THAT(heights, ElementsAre(HeightReport{0 + 24, false, false}));
}

TEST_F(FirmwareFinish, AtScale200TheEndGivesBackDesignPixels) {
    UseScale(200);
    row->UpdateDownloadForm();
    heights.clear();
    row->SetFinishProcess();
    EXPECT_THAT(heights, ElementsAre(HeightReport{52 + 24, false, false}));
}

TEST_F(FirmwareFinish, EmptyCallbacksThrowBadFunctionCall) {
    row->SetHeightCallBack({});
    EXPECT_THROW(row->SetFinishProcess(), std::bad_function_call);
    row->SetHeightCallBack([](int, bool, bool) {});
    row->SetFinishCallBack({});
    EXPECT_THROW(row->SetFinishProcess(), std::bad_function_call);
}

// The row list after the end of a row.
class RowListAtTheEnd : public FirmwareFinish {
protected:
    DuiLib::CControlUI* AddNamed(const wchar_t* name) {
        auto* const control = new DuiLib::CLabelUI;
        control->SetName(name);
        m_page.Parent()->Add(control);
        return control;
    }
};

TEST_F(RowListAtTheEnd, AfterTheWaitComeHeightRowListFinishAndNoticeInThisOrder) {
    const DuiLib::CControlUI* const line = AddNamed(L"X1_0");
    const Rows rows = {{L"X1", L"Device"}, {L"X1_0", L"Line"}, {L"X2", L"Device"}};
    g_updateItemList = rows;
    Forget();
    std::vector<std::string> steps;
    row->SetHeightCallBack([&](int, bool, bool) {
        steps.push_back("height");
        EXPECT_THAT(Slept(), ElementsAre(2000));
        EXPECT_TRUE(Shown(L"X1hor"));
        EXPECT_TRUE(line->IsVisible());
        EXPECT_EQ(g_updateItemList, rows);
    });
    row->SetFinishCallBack([&] {
        steps.push_back("finish");
        EXPECT_FALSE(Shown(L"X1hor"));
        EXPECT_FALSE(line->IsVisible());
        EXPECT_EQ(g_updateItemList, (Rows{{L"X2", L"Device"}}));
        EXPECT_THAT(Posted(), IsEmpty());
    });
    row->SetFinishProcess();
    EXPECT_THAT(steps, ElementsAre("height", "finish"));
    EXPECT_THAT(Posted(), ElementsAre("B20018 B20034 X1\\0"));
}

TEST_F(RowListAtTheEnd, TheOnlyEntryGoesAndTakesTheTitleAlong) {
    DuiLib::CControlUI* const title = AddNamed(L"DeviceUpdateTitle");
    g_updateItemList = {{L"X1", L"Device"}};
    row->SetFinishProcess();
    EXPECT_TRUE(g_updateItemList.empty());
    EXPECT_FALSE(title->IsVisible());
}

TEST_F(RowListAtTheEnd, TheFollowingSeparatorGoesWithTheRow) {
    DuiLib::CControlUI* const line = AddNamed(L"X1_0");
    g_updateItemList = {{L"X1", L"Device"}, {L"X1_0", L"Line"}, {L"X2", L"Device"}};
    row->SetFinishProcess();
    EXPECT_EQ(g_updateItemList, (Rows{{L"X2", L"Device"}}));
    EXPECT_FALSE(line->IsVisible());
}

TEST_F(RowListAtTheEnd, TheLastRowTakesTheSeparatorBeforeIt) {
    DuiLib::CControlUI* const line = AddNamed(L"X0_0");
    g_updateItemList = {{L"X0", L"Device"}, {L"X0_0", L"Line"}, {L"X1", L"Device"}};
    row->SetFinishProcess();
    EXPECT_EQ(g_updateItemList, (Rows{{L"X0", L"Device"}}));
    EXPECT_FALSE(line->IsVisible());
}

TEST_F(RowListAtTheEnd, WithoutAControlForTheNeighbourNothingChanges) {
    g_updateItemList = {{L"X1", L"Device"}, {L"gone", L"Line"}};
    row->SetFinishProcess();
    EXPECT_EQ(g_updateItemList.size(), 2u);
}

TEST_F(RowListAtTheEnd, ARowThatIsNotInTheListChangesNothing) {
    DuiLib::CControlUI* const line = AddNamed(L"X0_0");
    g_updateItemList = {{L"X0_0", L"Line"}};
    row->SetFinishProcess();
    EXPECT_EQ(g_updateItemList.size(), 1u);
    EXPECT_TRUE(line->IsVisible());
}

TEST_F(RowListAtTheEnd, EveryEntryOfTheTwoNamesGoes) {
    AddNamed(L"X1_0");
    g_updateItemList = {
        {L"X1", L"Device"}, {L"X1_0", L"Line"}, {L"X2", L"Device"}, {L"X1", L"Device"}, {L"X1_0", L"Line"}};
    row->SetFinishProcess();
    EXPECT_EQ(g_updateItemList, (Rows{{L"X2", L"Device"}}));
}

}  // namespace
