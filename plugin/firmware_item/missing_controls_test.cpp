// A row whose layout lacks controls.
#include <gmock/gmock.h>

#include <algorithm>
#include <bit>

#include "row_fixture.h"
#include "update_list/row_list.h"

namespace {

using DuiLib::g_updateItemList;
using DuiLib::RowInspector;
using testing::ElementsAreArray;
using testing::IsEmpty;

// In the order in which they are looked up, those that are renamed.
constexpr const char* kBound[] = {"updateBtn", "stopBtn",        "progress",    "hor",          "ver",
                                  "pulldown",  "progressLayout", "progressBtn", "progressLabel"};

std::wstring Wide(const std::string& text) { return {text.begin(), text.end()}; }

class MissingControls : public RowFixture {
protected:
    MissingControls() { ExpectFailureLine(L"nullptr"); }

    void MakeRowWithout(const std::set<std::string>& names) {
        UseLayouts({names, false, true});
        MakeRow();
        Forget();
        heights.clear();
    }

    // What can be seen of the row and its controls.
    std::vector<std::wstring> State() {
        std::vector<std::wstring> state = {std::to_wstring(RowInspector::RowHeight(*row)),
                                           std::to_wstring(RowInspector::Percent(*row)),
                                           std::to_wstring(static_cast<int>(Phase()))};
        for (const char* const name : kBound) {
            for (const std::wstring& full : {Wide(name), L"X1" + Wide(name)}) {
                const DuiLib::CControlUI* const control = m_page.Find(full);
                state.push_back(full + (control == nullptr ? L" is missing" : Look(*control)));
            }
        }
        return state;
    }

    static std::wstring Look(const DuiLib::CControlUI& control) {
        std::wstring look = control.IsVisible() ? L" shown " : L" hidden ";
        look += std::to_wstring(control.GetFixedHeight()) + L' ' + std::to_wstring(control.GetFont());
        for (const wchar_t* const name : {L"width", L"height", L"pos", L"bkround", L"bkcolor", L"textcolor",
                                          L"bordersize", L"normalimage", L"hottextcolor"}) {
            if (control.HasAttribute(name)) look += std::wstring(L" ") + name + L'=' + control.GetAttribute(name).Str();
        }
        return look + L" \"" + control.GetText().Str() + L"\" \"" + control.GetToolTip().Str() + L'"';
    }

    // Clicks on what is there; the number of those clicks.
    int ClickAll() {
        int clicks = 0;
        for (const wchar_t* const name : {L"X1updateBtn", L"X1pulldown", L"X1stopBtn"}) {
            if (m_page.Find(name) == nullptr) continue;
            Click(name);
            ++clicks;
        }
        return clicks;
    }

    // All that a host and a service can do to a row; how many clicks were among it.
    int DoEverything() {
        int clicks = ClickAll();
        Do("40%");
        clicks += ClickAll();
        Do("100% fail");
        clicks += ClickAll();
        Do("companion");
        clicks += ClickAll();
        Do("fail");
        clicks += ClickAll();
        row->UpdateDownloadForm();
        Do("end");
        seam::Get().companions.clear();
        return clicks;
    }
};

TEST_F(MissingControls, TheFirstNameThatIsMissingEndsTheBindingAndLeavesEveryOtherControlAlone) {
    const std::size_t count = std::size(kBound);
    for (std::size_t missing = 0; missing < count; ++missing) {
        SCOPED_TRACE(kBound[missing]);
        MakeRowWithout({kBound[missing]});
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(m_page.Find(L"X1" + Wide(kBound[i])) != nullptr, i < missing) << kBound[i];
            EXPECT_EQ(m_page.Find(Wide(kBound[i])) != nullptr, i > missing) << kBound[i];
            if (i <= missing) continue;
            DuiLib::CControlUI& left = Control(Wide(kBound[i]));
            EXPECT_FALSE(left.HasAttribute(L"width")) << kBound[i];
            EXPECT_FALSE(left.HasAttribute(L"height")) << kBound[i];
        }
        const bool complete = missing > 5;  // the progress group behind "pulldown" may lack what it wants
        if (missing > 0) {
            EXPECT_EQ(Control(L"X1updateBtn").HasAttribute(L"width"), complete);
        }
        EXPECT_EQ(m_page.Find(L"X1devInfo") != nullptr, missing > 4) << "needs \"ver\"";
        EXPECT_EQ(Text(L"desName"), L"Drawing pen");
        EXPECT_EQ(Text(L"version"), L"App version 1.0.2");
        EXPECT_EQ(Attribute(L"imageLabel", L"bkimage"), L"file='drawable/pen.svg'");
    }
}

TEST_F(MissingControls, AHorOrVerThatCannotHoldControlsCountsAsMissing) {
    for (const char* const name : {"hor", "ver"}) {
        UseLayouts({{}, true, true, {name}});
        MakeRow();
        EXPECT_NE(m_page.Find(Wide(name)), nullptr) << "keeps its name";
        EXPECT_EQ(m_page.Find(L"X1" + Wide(name)), nullptr);
        EXPECT_NE(m_page.Find(L"pulldown"), nullptr) << "comes behind it";
        EXPECT_THAT(heights, IsEmpty());
    }
}

struct NothingMore {
    const char* missing;
    const char* event;                // "form" is UpdateDownloadForm
    std::vector<std::wstring> lines;  // and nothing else happens
};

TEST_F(MissingControls, AnOperationThatLacksItsControlDoesNothingMore) {
    const std::vector<std::wstring> fail = {Line(L"set retry btn", L"SetRetryBtn")};
    const std::vector<std::wstring> end = {Line(L"set update btn finish", L"SetFinishProcess")};
    const NothingMore cases[] = {
        {"updateBtn", "fail", fail}, {"progress", "fail", fail}, {"progress", "end", end},
        {"hor", "end", end},         {"progress", "40%", {}},    {"progress", "update", {}},
        {"progress", "stop", {}},    {"pulldown", "form", {}},   {"hor", "form", {}},
    };
    for (const NothingMore& c : cases) {
        SCOPED_TRACE(std::string(c.event) + " without " + c.missing);
        MakeRowWithout({c.missing});
        g_updateItemList = {{L"X1", L"Device"}};
        const std::vector<std::wstring> before = State();
        if (c.event == std::string("form")) {
            row->UpdateDownloadForm();
        } else {
            Do(c.event);
        }
        EXPECT_THAT(Logged(), ElementsAreArray(c.lines));
        EXPECT_EQ(seam::Get().events.size(), c.lines.size()) << "no post, no sleep, no report";
        EXPECT_EQ(State(), before);
        EXPECT_THAT(heights, IsEmpty());
        EXPECT_EQ(finished, 0);
        EXPECT_EQ(g_updateItemList.size(), 1u);
    }
}

bool LacksOneOf(const std::set<std::string>& missing, std::initializer_list<const char*> needed) {
    return std::ranges::any_of(needed, [&](const char* name) { return missing.contains(name); });
}

// Up to three missing, or up to three present, of 13.
std::vector<std::set<std::string>> Subsets() {
    const char* const names[] = {"version",       "desName",       "updateBtn", "stopBtn",        "progress",
                                 "hor",           "ver",           "pulldown",  "progressLayout", "progressBtn",
                                 "progressLabel", "updateBtnText", "imageLabel"};
    const int count = static_cast<int>(std::size(names));
    std::vector<std::set<std::string>> subsets;
    for (unsigned bits = 0; bits < 1u << count; ++bits) {
        if (std::popcount(bits) > 3 && std::popcount(bits) < count - 3) continue;
        std::set<std::string> missing;
        for (int i = 0; i < count; ++i) {
            if (bits >> i & 1) missing.insert(names[i]);
        }
        subsets.push_back(missing);
    }
    return subsets;
}

TEST_F(MissingControls, EveryOperationSurvivesUpToThreeMissingAndUpToThreePresentControls) {
    const auto subsets = Subsets();
    ASSERT_EQ(subsets.size(), 2u * (1 + 13 + 78 + 286));
    for (const std::set<std::string>& missing : subsets) {
        SCOPED_TRACE(testing::PrintToString(missing));
        MakeRowWithout(missing);
        g_updateItemList = {{L"X1", L"Device"}};
        int perRound = 0;  // buttons that carry the key
        if (!LacksOneOf(missing, {"version", "desName", "updateBtn"})) {
            perRound = LacksOneOf(missing, {"stopBtn"})                              ? 1
                       : LacksOneOf(missing, {"progress", "hor", "ver", "pulldown"}) ? 2
                                                                                     : 3;
        }
        ASSERT_EQ(DoEverything(), 5 * perRound);
        const bool ends = !LacksOneOf(missing, {"version", "desName", "updateBtn", "stopBtn", "progress", "hor"});
        ASSERT_EQ(finished, ends ? 1 : 0);
        ASSERT_EQ(g_updateItemList.empty(), ends);
        Forget();
    }
}

}  // namespace
