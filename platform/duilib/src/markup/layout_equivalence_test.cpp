// A page that is changed and laid out step by step stands as one that is built in its last state and laid out once.
#include <random>

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

namespace {

using Random = std::mt19937;

int Below(Random& random, int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }

std::wstring RandomRect(Random& random, int limit) {
    std::wstring text;
    for (int i = 0; i < 4; ++i) text += (i ? L"," : L"") + std::to_wstring(Below(random, limit));
    return text;
}

// What a test may do to a control. Kept as attributes, so that the tree can be copied from them.
void ChangeSomething(Random& random, CControlUI& control) {
    const auto number = [&](int limit) { return std::to_wstring(Below(random, limit)); };
    switch (Below(random, 11)) {
        case 0:
            control.SetAttribute(L"width", number(3) == L"0" ? L"0" : number(90));
            break;
        case 1:
            control.SetAttribute(L"height", number(3) == L"0" ? L"0" : number(50));
            break;
        case 2:
            control.SetAttribute(L"text", std::wstring(static_cast<std::size_t>(Below(random, 30)), L'x'));
            break;
        case 3:
            control.SetAttribute(L"padding", RandomRect(random, 6));
            break;
        case 4:
            control.SetAttribute(L"pos", Below(random, 2) ? L"0,0,0,0" : RandomRect(random, 60));
            break;
        case 5:
            control.SetAttribute(L"inset", RandomRect(random, 6));
            break;
        case 6:
            control.SetAttribute(L"childpadding", number(5));
            break;
        case 7:
            control.SetAttribute(L"childalign", Below(random, 2) ? L"center" : L"left");
            break;
        case 8:
            control.SetAttribute(L"textpadding", RandomRect(random, 5));
            break;
        default:
            control.SetAttribute(L"visible", control.IsVisible() ? L"false" : L"true");
            break;
    }
}

CControlUI* NewControl(Random& random) {
    switch (Below(random, 7)) {
        case 0:
            return new CControlUI;
        case 1:
            return new CLabelUI;
        case 2:
            return new CTextUI;
        case 3:
            return new CButtonUI;
        case 4:
            return new CContainerUI;
        case 5:
            return new CVerticalLayoutUI;
        default:
            return new CHorizontalLayoutUI;
    }
}

CControlUI* SameClass(const CControlUI& control) {
    const std::wstring_view name = control.GetClass();
    if (name == L"Label") return new CLabelUI;
    if (name == L"Text") return new CTextUI;
    if (name == L"Button") return new CButtonUI;
    if (name == L"Container") return new CContainerUI;
    if (name == L"VerticalLayout") return new CVerticalLayoutUI;
    if (name == L"HorizontalLayout") return new CHorizontalLayoutUI;
    return new CControlUI;
}

CControlUI* Copy(const CControlUI& control) {
    CControlUI* const copy = SameClass(control);
    for (const wchar_t* name : {L"width", L"height", L"text", L"padding", L"pos", L"inset", L"childpadding",
                                L"childalign", L"textpadding", L"visible"}) {
        if (control.HasAttribute(name)) copy->SetAttribute(name, control.GetAttribute(name));
    }
    if (const auto* container = dynamic_cast<const CContainerUI*>(&control)) {
        for (int i = 0; i < container->GetCount(); ++i) {
            dynamic_cast<CContainerUI*>(copy)->Add(Copy(*container->GetItemAt(i)));
        }
    }
    return copy;
}

void Collect(CControlUI* control, std::vector<CControlUI*>& all) {
    all.push_back(control);
    if (const auto* container = dynamic_cast<CContainerUI*>(control)) {
        for (int i = 0; i < container->GetCount(); ++i) Collect(container->GetItemAt(i), all);
    }
}

std::vector<CControlUI*> AllOf(CPaintManagerUI& window) {
    std::vector<CControlUI*> all;
    Collect(window.GetRoot(), all);
    return all;
}

void AddSomething(Random& random, CPaintManagerUI& window) {
    const std::vector<CControlUI*> all = AllOf(window);
    auto* const container = dynamic_cast<CContainerUI*>(all[random() % all.size()]);
    if (!container || all.size() > 60) return;
    CControlUI* const control = NewControl(random);
    ChangeSomething(random, *control);
    container->Add(control);
}

void RemoveSomething(Random& random, CPaintManagerUI& window) {
    const std::vector<CControlUI*> all = AllOf(window);
    CControlUI* const control = all[random() % all.size()];
    if (control->GetParent()) control->GetParent()->Remove(control);
}

bool IsShown(const CControlUI* control) {
    for (; control; control = control->GetParent()) {
        if (!control->IsVisible()) return false;
    }
    return true;
}

// In a hidden container sizes are kept, so that they depend on the history.
void ExpectSamePlaces(CPaintManagerUI& window, CPaintManagerUI& fresh, unsigned seed, int step) {
    const std::vector<CControlUI*> seen = AllOf(window);
    const std::vector<CControlUI*> expected = AllOf(fresh);
    ASSERT_EQ(seen.size(), expected.size());
    for (std::size_t i = 0; i < seen.size(); ++i) {
        ASSERT_EQ(seen[i]->GetPos(), expected[i]->GetPos()) << "seed " << seed << " step " << step;
        if (IsShown(seen[i])) {
            ASSERT_EQ(seen[i]->GetHeight(), expected[i]->GetHeight()) << "seed " << seed << " step " << step;
            ASSERT_EQ(seen[i]->GetHeight(), seen[i]->GetPos().Height()) << "seed " << seed << " step " << step;
            ASSERT_EQ(seen[i]->GetWidth(), seen[i]->GetPos().Width()) << "seed " << seed << " step " << step;
        }
    }
}

}  // namespace

using LayoutEquivalenceTest = ToolkitTest;

TEST_F(LayoutEquivalenceTest, AnyHistoryOfChangesEndsLikeAFreshLayout) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        Random random(seed);
        CPaintManagerUI window;
        window.SetClientSize({300, 200});
        window.AttachRoot(Below(random, 2) ? static_cast<CControlUI*>(new CVerticalLayoutUI) : new CHorizontalLayoutUI);
        for (int i = 0; i < 25; ++i) AddSomething(random, window);
        for (int step = 0; step < 40; ++step) {
            const int action = Below(random, 12);
            if (action == 0) RemoveSomething(random, window);
            if (action == 1 || action == 2) AddSomething(random, window);
            if (action == 3) window.SetClientSize({100 + Below(random, 300), 100 + Below(random, 200)});
            if (action == 4) CResourceManager::GetInstance()->SetScale(Below(random, 2) ? 100 : 150);
            if (action > 4) {
                const std::vector<CControlUI*> all = AllOf(window);
                ChangeSomething(random, *all[random() % all.size()]);
            }
            if (Below(random, 3) == 0) continue;  // several changes before a layout
            CPaintManagerUI fresh;
            fresh.SetClientSize(window.GetClientSize());
            fresh.AttachRoot(Copy(*window.GetRoot()));
            ExpectSamePlaces(window, fresh, seed, step);
            if (HasFatalFailure()) return;
        }
    }
}

}  // namespace DuiLib
