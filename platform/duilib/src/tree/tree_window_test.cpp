#include "tree/tree_window.h"

#include <map>
#include <random>

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

using NameTest = WindowTest<CVerticalLayoutUI>;

TEST_F(NameTest, ANameFindsTheControlThatWasAddedLast) {
    Add<>({{L"name", L"version"}});
    auto* const second = Add<>({{L"name", L"version"}});
    EXPECT_EQ(window.FindControl(L"version"), second);
}

TEST_F(NameTest, ANameFindsTheControlThatWasRenamedLastAlsoIfItHadTheName) {
    for (const wchar_t* before : {L"other", L"version"}) {
        root->RemoveAll();
        auto* const first = Add<>({{L"name", before}});
        Add<>({{L"name", L"version"}});
        first->SetName(L"version");
        EXPECT_EQ(window.FindControl(L"version"), first);
        EXPECT_EQ(window.FindControl(L"other"), nullptr);
    }
}

TEST_F(NameTest, WhenTheLastTakerGoesTheOneBeforeIsFound) {
    auto* const first = Add<>({{L"name", L"version"}});
    auto* const second = Add<>({{L"name", L"version"}});
    auto* const third = Add<>({{L"name", L"version"}});
    root->Remove(second);
    EXPECT_EQ(window.FindControl(L"version"), third);
    third->SetName(L"X1version");
    EXPECT_EQ(window.FindControl(L"version"), first);
    root->Remove(first);
    EXPECT_EQ(window.FindControl(L"version"), nullptr);
}

TEST_F(NameTest, ATreeTakesItsNamesInDocumentOrder) {
    auto* const row = Make<CVerticalLayoutUI>({{L"name", L"a"}});
    auto* const inner = Make<CVerticalLayoutUI>({{L"name", L"b"}});
    auto* const innermost = Make<>({{L"name", L"a"}});
    auto* const after = Make<>({{L"name", L"b"}});
    inner->Add(innermost);
    row->Add(inner);
    row->Add(after);
    root->Add(row);
    EXPECT_EQ(window.FindControl(L"a"), innermost);
    EXPECT_EQ(window.FindControl(L"b"), after);
}

TEST_F(NameTest, TheEmptyNameFindsNothing) {
    Add<>();
    EXPECT_EQ(window.FindControl(L""), nullptr);
    auto* const named = Add<>({{L"name", L"x"}});
    named->SetName(L"");
    EXPECT_EQ(window.FindControl(L"x"), nullptr);
}

TEST_F(NameTest, ControlsOutsideTheTreeAreNotFound) {
    const std::unique_ptr<CControlUI> outside(Make<>({{L"name", L"x"}}));
    EXPECT_EQ(window.FindControl(L"x"), nullptr);
}

TEST_F(NameTest, AWindowKnowsItsOwnControlsAlone) {
    auto* const here = Add<>({{L"name", L"x"}});
    CPaintManagerUI other;
    auto* const there = Make<>({{L"name", L"x"}});
    other.AttachRoot(there);
    EXPECT_EQ(window.FindControl(L"x"), here);
    EXPECT_EQ(other.FindControl(L"x"), there);
}

// Against a list of all takings: adds, renames and removals in any order.
TEST_F(NameTest, AnyHistoryGivesTheLastTakerOfEachName) {
    std::mt19937 random(7);
    std::vector<CControlUI*> takings;  // oldest first
    const std::wstring names[] = {L"a", L"b", L"c", L""};
    for (int step = 0; step < 3000; ++step) {
        const auto action = random() % 3;
        if (action == 0 || takings.empty()) {
            auto* const control = new CControlUI;
            control->SetName(names[random() % 4]);
            root->Add(control);
            takings.push_back(control);
        } else {
            const auto chosen = takings.begin() + static_cast<std::ptrdiff_t>(random() % takings.size());
            CControlUI* const control = *chosen;
            takings.erase(chosen);
            if (action == 1) {
                control->SetName(names[random() % 4]);
                takings.push_back(control);
            } else {
                root->Remove(control);
            }
        }
        for (const std::wstring name : {L"a", L"b", L"c"}) {
            const auto last = std::find_if(takings.rbegin(), takings.rend(),
                                           [&](CControlUI* control) { return control->GetName() == name; });
            ASSERT_EQ(window.FindControl(name), last == takings.rend() ? nullptr : *last) << "step " << step;
        }
    }
}

}  // namespace DuiLib
