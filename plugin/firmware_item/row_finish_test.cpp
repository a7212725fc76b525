// The end of a row: what it shows, waits for, gives back and takes out of the row list, in this order.
#include <gmock/gmock.h>

#include "row_fixture.h"
#include "update_list/row_list.h"

namespace {

using DuiLib::g_updateItemList;
using testing::ElementsAre;
using testing::IsEmpty;

using Entries = std::vector<std::pair<std::wstring, std::wstring>>;

class RowFinish : public RowFixture {
protected:
    RowFinish() { MakeRow(); }

    DuiLib::CControlUI* AddNamed(const std::wstring& name) {
        auto* const control = new DuiLib::CLabelUI;
        control->SetName(name);
        m_page.Parent()->Add(control);
        return control;
    }
};

TEST_F(RowFinish, AfterTheWaitComeHeightRowListFinishAndNoticeInThisOrder) {
    Do("update 100%");
    const DuiLib::CControlUI* const line = AddNamed(L"X1_0");
    const Entries entries = {{L"X1", L"Device"}, {L"X1_0", L"Line"}, {L"X2", L"Device"}};
    g_updateItemList = entries;
    Forget();
    std::vector<std::string> steps;
    seam::Get().onSleep = [&](std::uint32_t) {
        steps.push_back("wait");
        EXPECT_EQ(Text(L"X1progress"), L"Up to date");
        EXPECT_EQ(Phase(), DuiLib::RowPhase::kEnded);
    };
    row->SetHeightCallBack([&](int height, bool grew, bool first) {
        steps.push_back("height");
        EXPECT_EQ((HeightReport{height, grew, first}), (HeightReport{92 + 24, false, false})) << "two lines, unfolded";
        EXPECT_TRUE(Shown(L"X1hor"));
        EXPECT_TRUE(line->IsVisible());
        EXPECT_EQ(g_updateItemList, entries);
    });
    row->SetFinishCallBack([&] {
        steps.push_back("finish");
        EXPECT_FALSE(Shown(L"X1hor"));
        EXPECT_FALSE(line->IsVisible());
        EXPECT_EQ(g_updateItemList, (Entries{{L"X2", L"Device"}}));
        EXPECT_THAT(Posted(), IsEmpty());
    });
    Do("end");
    EXPECT_THAT(steps, ElementsAre("wait", "height", "finish"));
    EXPECT_THAT(Slept(), ElementsAre(2000));
    EXPECT_THAT(Posted(), ElementsAre("B20018 B20034 X1\\0"));
}

TEST_F(RowFinish, TheEndOfARowInAHiddenPageGivesBackItsWholeHeight) {
    Do("pulldown");
    heights.clear();
    m_page.Parent()->SetVisible(false);
    Do("end");
    EXPECT_THAT(heights, ElementsAre(HeightReport{52 + 24, false, false}));
}

// Deliberate: nothing remembers that the row has ended.
TEST_F(RowFinish, ASecondEndOfTheSameRowGivesBack24AndIsToldAgain) {
    Do("end");
    heights.clear();
    Forget();
    Do("end");
    EXPECT_THAT(heights, ElementsAre(HeightReport{24, false, false})) << "the row itself is hidden";
    EXPECT_EQ(finished, 2);
    EXPECT_THAT(Slept(), ElementsAre(2000));
    EXPECT_THAT(Posted(), ElementsAre("B20018 B20034 X1\\0"));
}

struct GivenBack {
    unsigned scale;
    int height;  // [design px] of "hor"
    int change;
};

TEST_F(RowFinish, TheEndGivesBackTheHeightInDesignPixelsTruncatedAnd24) {
    for (const GivenBack& c :
         {GivenBack{100, 52, 52 + 24}, GivenBack{200, 52, 52 + 24}, GivenBack{110, 52, 51 + 24},  // 57 pixels: 51.8
          GivenBack{125, 51, 51 + 24},                                                            // 64 pixels: 51.2
          GivenBack{150, 51, 51 + 24},                                                            // 77 pixels: 51.3
          GivenBack{50, 52, 0 + 24},      // 26 pixels: 0.26. Deliberate: a hundredth
          GivenBack{75, 371, 2 + 24}}) {  // 278 pixels: 2.78
        UseScale(c.scale);
        MakeRow();
        row->UpdateDownloadForm();
        Control(L"X1hor").SetFixedHeight(c.height);
        heights.clear();
        Do("end");
        EXPECT_THAT(heights, ElementsAre(HeightReport{c.change, false, false})) << c.scale;
    }
}

TEST_F(RowFinish, EmptyCallbacksThrowBadFunctionCall) {
    row->SetHeightCallBack({});
    EXPECT_THROW(row->SetFinishProcess(), std::bad_function_call);
    row->SetHeightCallBack([](int, bool, bool) {});
    row->SetFinishCallBack({});
    EXPECT_THROW(row->SetFinishProcess(), std::bad_function_call);
}

struct RowListCase {
    const char* what;
    Entries before;
    std::vector<const wchar_t*> controls;  // that the page has, by name
    Entries after;
    std::vector<const wchar_t*> hidden;
};

const RowListCase kRowLists[] = {
    {"the only entry goes and takes the title along",
     {{L"X1", L"Device"}},
     {L"DeviceUpdateTitle"},
     {},
     {L"DeviceUpdateTitle"}},
    {"the following separator goes with the row",
     {{L"X0", L"Device"}, {L"X0_0", L"Line"}, {L"X1", L"Device"}, {L"X1_1", L"Line"}, {L"X2", L"Device"}},
     {L"X0_0", L"X1_1", L"DeviceUpdateTitle"},
     {{L"X0", L"Device"}, {L"X0_0", L"Line"}, {L"X2", L"Device"}},
     {L"X1_1"}},
    {"the last row takes the separator before it",
     {{L"X0", L"Device"}, {L"X0_0", L"Line"}, {L"X1", L"Device"}},
     {L"X0_0", L"DeviceUpdateTitle"},
     {{L"X0", L"Device"}},
     {L"X0_0"}},
    {"without a control for the neighbour nothing changes",
     {{L"X1", L"Device"}, {L"nobody", L"Line"}},
     {L"DeviceUpdateTitle"},
     {{L"X1", L"Device"}, {L"nobody", L"Line"}},
     {}},
    {"a row that is not in the list changes nothing",
     {{L"X0_0", L"Line"}},
     {L"X0_0", L"DeviceUpdateTitle"},
     {{L"X0_0", L"Line"}},
     {}},
    {"a name that only begins alike is another's",
     {{L"X1_0", L"Line"}, {L"X10", L"Device"}},
     {L"X1_0", L"X10"},
     {{L"X1_0", L"Line"}, {L"X10", L"Device"}},
     {}},
    {"every entry of the two names goes",
     {{L"X1", L"Device"}, {L"X1_0", L"Line"}, {L"X2", L"Device"}, {L"X1", L"Device"}, {L"X1_0", L"Line"}},
     {L"X1_0", L"DeviceUpdateTitle"},
     {{L"X2", L"Device"}},
     {L"X1_0"}},
};

TEST_F(RowFinish, TheRowLeavesTheListWithItsNeighbour) {
    for (const RowListCase& c : kRowLists) {
        SCOPED_TRACE(c.what);
        MakeRow();
        std::vector<const DuiLib::CControlUI*> controls;
        for (const wchar_t* const name : c.controls) controls.push_back(AddNamed(name));
        g_updateItemList = c.before;
        Do("end");
        EXPECT_EQ(g_updateItemList, c.after);
        for (std::size_t i = 0; i < controls.size(); ++i) {
            const bool hidden =
                std::find(c.hidden.begin(), c.hidden.end(), std::wstring(c.controls[i])) != c.hidden.end();
            EXPECT_EQ(controls[i]->IsVisible(), !hidden) << i;
        }
    }
}

}  // namespace
