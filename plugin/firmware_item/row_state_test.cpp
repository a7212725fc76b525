// What clicks and the service's messages make of a row. The replayed scenarios own its log lines and attributes.
#include <gmock/gmock.h>

#include "row_fixture.h"

namespace {

using DuiLib::RowInspector;
using DuiLib::RowPhase;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Posts = std::vector<std::string>;

const Posts kNothing;
const Posts kStart = {"B20001 B20022 X1\\0", "B20018 B20033 X1\\0"};
const Posts kPause = {"B20001 B20025 X1\\0", "B20018 B20034 X1\\0"};
const Posts kStopped = {"B20018 B20034 X1\\0"};

constexpr const wchar_t* kTip = L"Close Drawing pen first.";

class RowState : public RowFixture {};

struct Transition {
    const char* before;
    const char* event;
    RowPhase phase;
    Posts posts;
    const wchar_t* text;
    const wchar_t* toolTip;  // of the stop button
};

void PrintTo(const Transition& t, std::ostream* out) { *out << "\"" << t.before << "\", then \"" << t.event << "\""; }

const Transition kTransitions[] = {
    {"", "", RowPhase::kOffered, kNothing, L"", L""},
    {"", "37%", RowPhase::kOffered, kNothing, L"37%", L""},
    {"companion", "update", RowPhase::kOffered, kNothing, L"", L""},
    {"", "update", RowPhase::kDownloading, kStart, L"0%", L""},
    {"", "stop", RowPhase::kPaused, kPause, L"Resume", L"Resume"},
    {"update", "37%", RowPhase::kDownloading, kNothing, L"37%", L""},
    {"update", "100%", RowPhase::kInstalling, kNothing, L"Installing...", L"Installing..."},
    {"update", "250%", RowPhase::kInstalling, kNothing, L"Installing...", L"Installing..."},
    {"update 100%", "40%", RowPhase::kDownloading, kNothing, L"40%", L"Installing..."},
    {"update 37%", "stop", RowPhase::kPaused, kPause, L"Resume", L"Resume"},
    {"update 37% companion", "stop", RowPhase::kPaused, kPause, L"Resume", L"Resume"},
    {"update 100%", "stop", RowPhase::kPaused, kPause, L"Resume", L"Resume"},
    {"update 37% stop", "50%", RowPhase::kPaused, kNothing, L"Resume", L"Resume"},
    {"update 37% stop", "stop", RowPhase::kDownloading, kStart, L"37%", L""},
    {"update 37% stop companion", "stop", RowPhase::kPaused, kNothing, L"Resume", kTip},
    {"update 100% stop", "stop", RowPhase::kInstalling, kStart, L"Installing...", L""},
    {"update 37%", "fail", RowPhase::kFailed, kStopped, L"Try again", L"Try again"},
    {"update 37% fail", "40%", RowPhase::kFailed, kNothing, L"40%", L"Try again"},
    {"update 37% fail", "stop", RowPhase::kDownloading, kStart, L"37%", L""},
    {"update 37% fail companion", "stop", RowPhase::kFailed, kNothing, L"Try again", kTip},
    {"update 100% fail", "stop", RowPhase::kInstalling, kStart, L"Installing...", L""},
    {"update 37% stop", "fail", RowPhase::kFailed, kStopped, L"Try again", L"Try again"},
    {"update 37% stop fail", "50%", RowPhase::kFailed, kNothing, L"Resume", L"Try again"},
    // Deliberate: a failure does not clear the pause.
    {"update 37% stop fail", "stop", RowPhase::kPaused, kStart, L"37%", L""},
    {"update 37% stop fail stop", "stop", RowPhase::kDownloading, kStart, L"37%", L""},
    {"update 100%", "end", RowPhase::kEnded, kStopped, L"Up to date", L"Up to date"},
    {"update 37% stop", "end", RowPhase::kPaused, kStopped, L"Up to date", L"Up to date"},
    // Deliberate: an ended row still pauses and resumes.
    {"update end", "stop", RowPhase::kPaused, kPause, L"Resume", L"Resume"},
    {"update end stop", "stop", RowPhase::kEnded, kStart, L"Up to date", L""},
    {"update end fail", "stop", RowPhase::kEnded, kStart, L"Up to date", L""},
};

class Transitions : public RowState, public testing::WithParamInterface<Transition> {};

TEST_P(Transitions, LeadToThePhasePostsAndTexts) {
    const Transition& t = GetParam();
    MakeRow();
    Do(t.before);
    Forget();
    Do(t.event);
    EXPECT_EQ(Phase(), t.phase);
    EXPECT_THAT(Posted(), ElementsAreArray(t.posts));
    EXPECT_EQ(Text(L"X1progress"), t.text);
    EXPECT_EQ(ToolTip(L"X1stopBtn"), t.toolTip);
}

INSTANTIATE_TEST_SUITE_P(Row, Transitions, testing::ValuesIn(kTransitions));

struct AtAPost {
    const char* before;
    const char* event;
    RowPhase phase;
    const wchar_t* text;
    const wchar_t* toolTip;
    const wchar_t* pos;
    std::size_t posts;
};

TEST_F(RowState, EveryPostGoesOutWhenItsLookIsShownAndBeforeThePhaseChanges) {
    const AtAPost cases[] = {
        {"", "update", RowPhase::kDownloading, L"0%", L"", L"", 2},
        {"update 37%", "stop", RowPhase::kDownloading, L"Resume", L"Resume", L"44,0,120,0", 2},
        {"update 37% stop", "stop", RowPhase::kPaused, L"37%", L"Resume", L"44,0,120,0", 2},
        {"update 37%", "fail", RowPhase::kDownloading, L"37%", L"", L"44,0,120,0", 1},
        {"update 37% fail", "stop", RowPhase::kFailed, L"37%", L"", L"44,0,120,0", 2},
    };
    for (const AtAPost& m : cases) {
        SCOPED_TRACE(std::string(m.before) + " | " + m.event);
        MakeRow();
        Do(m.before);
        Forget();
        seam::Get().onPost = [&](int) {
            EXPECT_EQ(Phase(), m.phase);
            EXPECT_EQ(Text(L"X1progress"), m.text);
            EXPECT_EQ(ToolTip(L"X1stopBtn"), m.toolTip);
            EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), m.pos);
            EXPECT_FALSE(Shown(L"X1updateBtn"));
            EXPECT_TRUE(Shown(L"X1stopBtn"));
        };
        Do(m.event);
        seam::Get().onPost = {};
        EXPECT_EQ(Posted().size(), m.posts);
    }
}

TEST_F(RowState, AFailureEmptiesTheBarAndARetryFillsItAgain) {
    MakeRow();
    Do("update 37% fail");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"0,0,0,0");
    Do("stop");
    EXPECT_EQ(Attribute(L"X1progressLayout", L"pos"), L"44,0,120,0");
}

TEST_F(RowState, TheLastPercentageIsRememberedWhilePausedToo) {
    MakeRow();
    Do("update 10% stop 50%");
    EXPECT_EQ(RowInspector::Percent(*row), 50);
    EXPECT_FALSE(RowInspector::IsInstalling(*row));
    Do("stop");
    EXPECT_EQ(Text(L"X1progress"), L"10%") << "the record is of what was shown";
    Do("100%");
    EXPECT_TRUE(RowInspector::IsInstalling(*row));
}

TEST_F(RowState, TheSecondCompanionQuestionIsAskedOnlyAfterAYes) {
    MakeRow();
    Do("update");
    EXPECT_EQ(seam::Get().companionQuestions, (std::vector<std::wstring>{L"running:X1"}));
    seam::Get().companions[L"X1"] = {false, true};
    Do("update");
    EXPECT_EQ(seam::Get().companionQuestions, (std::vector<std::wstring>{L"running:X1", L"running:X1", L"app:X1"}));
}

TEST_F(RowState, AStartWithoutItsControlsIsLoggedAndDoesNothing) {
    UseLayouts({{"stopBtn"}, true, true});
    ExpectFailureLine(L"nullptr");
    MakeRow();
    Forget();
    RowInspector::Start(*row);
    EXPECT_THAT(Logged(3), ElementsAre(Line(L" paintManager wrong nullptr", L"RlushAccessries")));
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(RowState, RenamedControlsAreLeftAloneButTheStartIsPosted) {
    MakeRow();
    Control(L"X1updateBtn").SetName(L"other1");
    Control(L"X1stopBtn").SetName(L"other2");
    Forget();
    RowInspector::Start(*row);
    EXPECT_TRUE(Shown(L"other1"));
    EXPECT_FALSE(Shown(L"other2"));
    EXPECT_FALSE(Shown(L"X1progressBtn"));
    EXPECT_THAT(Posted(), ElementsAreArray(kStart));
}

TEST_F(RowState, OnlyAClickOnAControlOfThisRowCounts) {
    MakeRow();
    Forget();
    DuiLib::CControlUI other;
    other.SetName(L"X2stopBtn");
    DuiLib::TNotifyUI ofAnotherRow{DuiLib::kNotifyClick, &other, {}, {}};
    DuiLib::TNotifyUI noClick{L"mouseenter", &Control(L"X1updateBtn"), {}, {}};
    DuiLib::TNotifyUI fromNowhere{DuiLib::kNotifyClick, nullptr, {}, {}};
    for (DuiLib::TNotifyUI* const message : {&ofAnotherRow, &noClick, &fromNowhere}) row->OnClick(*message);
    EXPECT_TRUE(seam::Get().events.empty());
}

}  // namespace
