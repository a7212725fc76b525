// Which calls a look makes on the row's controls, in which order. What they come to is the replayed scenarios' matter.
#include <gmock/gmock.h>

#include "row_fixture.h"

namespace {

using testing::ElementsAre;

std::string Narrow(std::wstring_view text) { return {text.begin(), text.end()}; }

using Journal = std::vector<std::string>;

// Writes down the calls that it gets under the name that the layout gave it.
class RecordingLabel : public DuiLib::CLabelUI {
public:
    RecordingLabel(const wchar_t* name, Journal& journal) : m_name(Narrow(name)), m_journal(journal) {
        CLabelUI::SetName(name);
    }
    void SetText(std::wstring_view text) override {
        m_journal.push_back(m_name + " says " + Narrow(text));
        CLabelUI::SetText(text);
    }
    void SetToolTip(std::wstring_view text) override {
        m_journal.push_back(m_name + " tips " + Narrow(text));
        CLabelUI::SetToolTip(text);
    }
    void SetVisible(bool visible) override {
        m_journal.push_back(m_name + (visible ? " shown" : " hidden"));
        CLabelUI::SetVisible(visible);
    }
    void SetAttribute(std::wstring_view name, std::wstring_view value) override {
        m_journal.push_back(m_name + " " + Narrow(name) + "=" + Narrow(value));
        CLabelUI::SetAttribute(name, value);
    }

private:
    std::string m_name;
    Journal& m_journal;
};

// The row's own layout lacks the controls that looks change; those of the page, which record, take their places.
class RowLooks : public RowFixture {
protected:
    static constexpr const wchar_t* kNames[] = {L"updateBtn",      L"stopBtn",     L"progress",
                                                L"progressLayout", L"progressBtn", L"progressLabel"};
    RowLooks() {
        std::set<std::string> missing;
        for (const wchar_t* const name : kNames) missing.insert(Narrow(name));
        UseLayouts({missing, true, true});
        m_page.Discard();
        for (const wchar_t* const name : kNames) m_page.Parent()->Add(new RecordingLabel(name, m_journal));
        const kernel::UiTurn turn;
        row = std::make_unique<DuiLib::AccessoriesFirwareWnd>();
        row->SetHeightCallBack([](int, bool, bool) {});
        row->SetFinishCallBack([] {});
        row->InitFirmwareLayout(m_page.Manager(), m_page.Pump(), m_page.Parent(), Pen());
        m_page.Parent()->SetVirtualWnd(std::to_wstring(reinterpret_cast<std::uintptr_t>(row.get())));
    }

    // The calls that one event makes after others.
    Journal CallsOf(const std::string& before, const std::string& event) {
        Do(before);
        m_journal.clear();
        Do(event);
        return m_journal;
    }

private:
    Journal m_journal;
};

TEST_F(RowLooks, AStartPutsTheProgressGroupInThePlaceOfTheButton) {
    EXPECT_THAT(CallsOf("", "update"),
                ElementsAre("updateBtn hidden", "progressLayout shown", "progressBtn shown", "progressLabel shown",
                            "progress shown", "progress says 0%", "progress shown", "stopBtn shown"));
}

TEST_F(RowLooks, APercentageIsALayerOverThePartNotYetDone) {
    EXPECT_THAT(
        CallsOf("update", "37%"),
        ElementsAre("progressLabel borderfillcolor=#FFA8B9FC", "progress textcolor=#FF191919", "progress bordersize=1",
                    "progress bkcolor=00FFFFFF", "progressLabel bordersize=1", "progressLayout bkround=0,0",
                    "progressLayout pos=44,0,120,0", "progressLayout bkcolor=#FFFFFFFF", "progress says 37%"));
}

TEST_F(RowLooks, AHundredPercentIsTheInstallingLookOnTopOfIt) {
    Journal calls = CallsOf("update", "100%");
    ASSERT_GT(calls.size(), 9u);
    calls.erase(calls.begin(), calls.begin() + 9);
    EXPECT_THAT(
        calls, ElementsAre("progressLabel hidden", "progressLayout width=120", "progress bkround=28,28",
                           "progressLayout bkround=28,28", "progress bkcolor=#FFA8B9FC", "progress textcolor=#FFFFFFFF",
                           "progress bordersize=0", "progressLayout bordersize=0", "progress says Installing...",
                           "stopBtn tips Installing..."));
}

TEST_F(RowLooks, APauseAndAPercentageMeanwhileSayOnlyResume) {
    EXPECT_THAT(CallsOf("update 37%", "stop"), ElementsAre("progress says Resume", "stopBtn tips Resume"));
    EXPECT_THAT(CallsOf("", "50%"), ElementsAre("progressLabel borderfillcolor=#FFA8B9FC", "progress says Resume"));
}

TEST_F(RowLooks, AResumeRestoresTextAndFillAndThenTakesTheTipAway) {
    EXPECT_THAT(CallsOf("update 37% stop", "stop"),
                ElementsAre("progress says 37%", "progressLayout pos=44,0,120,0", "stopBtn tips "));
}

// Deliberate: "textcolor" is set twice.
TEST_F(RowLooks, AFailureEmptiesAndRoundsTheBarAndSetsItsTextsColourTwice) {
    EXPECT_THAT(CallsOf("update 37%", "fail"),
                ElementsAre("progressLayout width=120", "progressLayout pos=0,0,0,0", "progressLayout bkround=28,28",
                            "progressLabel bordersize=0", "progress textcolor=#FF0A59F7", "progress bkcolor=0C000000",
                            "progress textcolor=#FF0A59F7", "progress bordersize=0", "progress bkround=28,28",
                            "progressLayout bordersize=0", "progress says Try again", "stopBtn tips Try again"));
}

TEST_F(RowLooks, ARetryTakesTheFailedLookAwayAndRestoresTextAndFill) {
    EXPECT_THAT(CallsOf("update 37% fail", "stop"),
                ElementsAre("progress textcolor=#FF191919", "progress bordersize=1", "progress bkcolor=00FFFFFF",
                            "progressLabel bordersize=1", "progressLayout bkround=0,0", "stopBtn tips ",
                            "progress says 37%", "progressLayout pos=44,0,120,0"));
}

TEST_F(RowLooks, TheEndIsAWholeRoundBar) {
    EXPECT_THAT(CallsOf("update 100%", "end"),
                ElementsAre("progressLabel hidden", "progressLayout width=120", "progressLayout bkround=28,28",
                            "progress bkround=28,28", "progress bkcolor=0C000000", "progress textcolor=#FF0A59F7",
                            "progress bordersize=0", "progressLayout bordersize=0", "progress says Up to date",
                            "stopBtn tips Up to date"));
}

struct Restored {
    const char* before;
    const char* text;
    int font;
};

TEST_F(RowLooks, WhatAResumeAndARetrySayHasTheFontOfItsPhase) {
    for (const Restored& c : {Restored{"update 37% stop", "37%", 102}, Restored{"100% stop", "Installing...", 102},
                              Restored{"40% fail", "40%", 102}, Restored{"100% fail", "Installing...", 102},
                              Restored{"end stop", "Up to date", 9}, Restored{"fail", "Up to date", 9}}) {
        Do(std::string(c.before) + " stop");
        EXPECT_EQ(Narrow(Text(L"X1progress")), c.text) << c.before;
        EXPECT_EQ(Control(L"X1progress").GetFont(), c.font) << c.before;
    }
}

}  // namespace
