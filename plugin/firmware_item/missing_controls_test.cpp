// A row whose layout lacks controls.
#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <functional>

#include "row_fixture.h"
#include "update_list/row_list.h"

namespace {

using DuiLib::g_updateItemList;
using DuiLib::RowInspector;
using testing::ElementsAreArray;
using testing::IsEmpty;

class MissingControls : public RowFixture {
protected:
    MissingControls() { ExpectFailureLine(L"nullptr"); }

    void MakeRowWithout(const std::set<std::string>& names) {
        m_page.Discard();
        UseLayouts({names, false, true});
        MakeRow();
        Forget();
        heights.clear();
    }

    // What an operation that does nothing leaves alone.
    std::vector<std::wstring> State() {
        std::vector<std::wstring> state = {RowInspector::ProgressRecord(*row), RowInspector::PosRecord(*row)};
        for (const int number :
             {RowInspector::RowHeight(*row), RowInspector::Percent(*row), int{RowInspector::NeedsRetry(*row)},
              int{RowInspector::IsPaused(*row)}, int{RowInspector::IsInstalling(*row)}}) {
            state.push_back(std::to_wstring(number));
        }
        for (const wchar_t* const name :
             {L"X1hor", L"X1ver", L"X1devInfo", L"X1updateBtn", L"X1stopBtn", L"pulldown"}) {
            const DuiLib::CControlUI* const control = m_page.Find(name);
            if (control == nullptr) continue;
            state.push_back(name + std::wstring(control->IsVisible() ? L" shown " : L" hidden ") +
                            std::to_wstring(control->GetFixedHeight()) + control->GetToolTip().Str() +
                            control->GetAttribute(L"normalimage").Str());
        }
        return state;
    }

    void ClickWhatIsThere() {
        for (const wchar_t* const name : {L"X1updateBtn", L"X1pulldown", L"X1stopBtn"}) {
            if (m_page.Find(name) != nullptr) Click(name);
        }
    }

    void DoEverything() {
        ClickWhatIsThere();
        row->RlushAccessries();
        row->ShowDownloadProgress(40);
        row->SetResume();
        row->SetResumeClick();
        row->ModifiyPullDownStatus();
        row->ShowDownloadProgress(100);
        row->SetRetryBtn();
        ClickWhatIsThere();
        row->SetRetryClick();
        row->ControlRetry(L"X1");
        row->AppRunningTipStopBtn();
        row->AppRunningTipUpdateBtn();
        row->UpdateDownloadForm();
        row->SetFinishProcess();
    }
};

struct NothingMore {
    const char* missing;
    const char* operation;
    std::function<void()> run;
    std::vector<std::wstring> lines;  // and nothing else happens
};

TEST_F(MissingControls, AnOperationThatLacksItsControlDoesNothingMore) {
    const std::wstring retry = Line(L"set retry btn", L"SetRetryBtn");
    const std::wstring finish = Line(L"set update btn finish", L"SetFinishProcess");
    const NothingMore cases[] = {
        {"progress", "SetRetryBtn", [this] { row->SetRetryBtn(); }, {retry}},
        {"progress", "SetFinishProcess", [this] { row->SetFinishProcess(); }, {finish}},
        {"hor", "SetFinishProcess", [this] { row->SetFinishProcess(); }, {finish}},
        {"progress", "ShowDownloadProgress", [this] { row->ShowDownloadProgress(40); }, {}},
        {"pulldown", "ModifiyPullDownStatus", [this] { row->ModifiyPullDownStatus(); }, {}},
        {"pulldown", "UpdateDownloadForm", [this] { row->UpdateDownloadForm(); }, {}},
    };
    for (const NothingMore& c : cases) {
        SCOPED_TRACE(std::string(c.operation) + " without " + c.missing);
        MakeRowWithout({c.missing});
        g_updateItemList = {{L"X1", L"Device"}};
        const std::vector<std::wstring> before = State();
        c.run();
        EXPECT_THAT(Logged(3), ElementsAreArray(c.lines));
        EXPECT_EQ(seam::Get().events.size(), c.lines.size()) << "no post, no sleep, no report";
        EXPECT_EQ(State(), before);
        EXPECT_THAT(heights, IsEmpty());
        EXPECT_EQ(finished, 0);
        EXPECT_EQ(g_updateItemList.size(), 1u);
    }
}

TEST_F(MissingControls, WithoutProgressAClickDoesNothingAtAll) {
    MakeRowWithout({"progress"});
    const std::vector<std::wstring> before = State();
    Click(L"X1updateBtn");
    Click(L"X1stopBtn");
    EXPECT_TRUE(seam::Get().events.empty()) << "no line, no report, no post";
    EXPECT_EQ(State(), before);
}

TEST_F(MissingControls, EveryOperationSurvivesUpToThreeMissingAndUpToThreePresentControls) {
    const char* const names[] = {"version",       "desName",       "updateBtn", "stopBtn",        "progress",
                                 "hor",           "ver",           "pulldown",  "progressLayout", "progressBtn",
                                 "progressLabel", "updateBtnText", "imageLabel"};
    const auto lacksOneOf = [](const std::set<std::string>& missing, std::initializer_list<const char*> needed) {
        return std::ranges::any_of(needed, [&](const char* name) { return missing.contains(name); });
    };
    for (unsigned subset = 0; subset < 1u << std::size(names); ++subset) {
        const int missingCount = std::popcount(subset);
        if (missingCount > 3 && missingCount < static_cast<int>(std::size(names)) - 3) continue;
        SCOPED_TRACE(subset);
        std::set<std::string> missing;
        for (std::size_t i = 0; i < std::size(names); ++i) {
            if (subset >> i & 1) missing.insert(names[i]);
        }
        finished = 0;
        MakeRowWithout(missing);
        g_updateItemList = {{L"X1", L"Device"}};
        DoEverything();
        const bool ends = !lacksOneOf(missing, {"version", "desName", "updateBtn", "stopBtn", "progress", "hor"});
        ASSERT_EQ(finished, ends ? 1 : 0);
        ASSERT_EQ(g_updateItemList.empty(), ends);
        Forget();
    }
}

}  // namespace
