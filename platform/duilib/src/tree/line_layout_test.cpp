// Children one below the other, and side by side.
#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

using VerticalLayoutTest = WindowTest<CVerticalLayoutUI>;

class HorizontalLayoutTest : public WindowTest<CHorizontalLayoutUI> {
protected:
    CHorizontalLayoutUI* RowInAPage(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> attributes = {}) {
        auto* const page = Make<CVerticalLayoutUI>();
        auto* const row = Make<CHorizontalLayoutUI>(attributes);
        page->Add(row);
        window.AttachRoot(page);
        return row;
    }
};

TEST_F(VerticalLayoutTest, ChildrenWithoutHeightOrContentShareWhatIsLeft) {
    Add<>({{L"height", L"99"}});
    auto* const a = Add<>();
    auto* const b = Add<>();
    EXPECT_EQ(a->GetPos(), (CDuiRect{0, 99, 400, 200})) << "the odd pixel goes to the first";
    EXPECT_EQ(b->GetPos(), (CDuiRect{0, 200, 400, 300}));
}

TEST_F(VerticalLayoutTest, ContentGivesTheHeightOfLabelsTextsAndContainers) {
    auto* const label = Add<CLabelUI>({{L"text", L"x"}});
    auto* const text = Add<CTextUI>({{L"text", L"0123456789"}, {L"width", L"50"}});
    auto* const column = Add<CVerticalLayoutUI>();
    Add<>({{L"height", L"7"}}, column);
    Add<>({{L"height", L"8"}}, column);
    auto* const empty = Add<CContainerUI>();
    EXPECT_EQ(label->GetPos(), (CDuiRect{0, 0, 400, 20}));
    EXPECT_EQ(text->GetPos(), (CDuiRect{0, 20, 50, 60}));
    EXPECT_EQ(column->GetPos(), (CDuiRect{0, 60, 400, 75}));
    EXPECT_EQ(empty->GetHeight(), 0);
}

TEST_F(VerticalLayoutTest, AnEmptyLabelTakesNoHeight) { EXPECT_EQ(Add<CLabelUI>()->GetHeight(), 0); }

TEST_F(VerticalLayoutTest, HiddenChildrenTakeNoRoomAndNoGap) {
    root->SetAttribute(L"childpadding", L"10");
    auto* const a = Add<>({{L"height", L"20"}, {L"padding", L"0,1,0,2"}});
    auto* const b = Add<>({{L"height", L"20"}});
    EXPECT_EQ(b->GetPos().top, 33);
    a->SetVisible(false);
    EXPECT_EQ(b->GetPos().top, 0);
    a->SetVisible(true);
    EXPECT_EQ(b->GetPos().top, 33);
}

TEST_F(VerticalLayoutTest, FixedHeightsAreKeptWhereTheRoomIsTooSmall) {
    Add<>({{L"height", L"250"}});
    auto* const second = Add<>({{L"height", L"100"}});
    auto* const rest = Add<>();
    EXPECT_EQ(second->GetPos(), (CDuiRect{0, 250, 400, 350}));
    EXPECT_EQ(rest->GetPos(), (CDuiRect{0, 350, 400, 350}));
}

TEST_F(VerticalLayoutTest, AFloatingChildTakesNoRoom) {
    auto* const layer = Add<>({{L"pos", L"0,0,40,0"}});
    auto* const label = Add<CLabelUI>({{L"text", L"x"}});
    EXPECT_EQ(layer->GetPos(), (CDuiRect{0, 0, 40, 300}));
    EXPECT_EQ(label->GetPos(), (CDuiRect{0, 0, 400, 20}));
    layer->SetAttribute(L"pos", L"0,0,0,0");
    EXPECT_EQ(layer->GetPos(), (CDuiRect{0, 0, 400, 280})) << "it stands in the column again";
}

TEST_F(VerticalLayoutTest, ChildrenThatDoNotFillAreAligned) {
    root->SetAttribute(L"childalign", L"right");
    root->SetAttribute(L"childvalign", L"center");
    auto* const child = Add<>({{L"width", L"100"}, {L"height", L"50"}});
    EXPECT_EQ(child->GetPos(), (CDuiRect{300, 125, 400, 175}));
}

TEST_F(VerticalLayoutTest, AColumnWithAFlexibleChildIsFlexibleItself) {
    auto* const column = Add<CVerticalLayoutUI>();
    Add<>({{L"height", L"10"}}, column);
    auto* const spring = Add<>({}, column);
    EXPECT_EQ(column->GetHeight(), 300);
    spring->SetVisible(false);
    EXPECT_EQ(column->GetHeight(), 10);
}

TEST_F(VerticalLayoutTest, AWrappingTextGrowsWithItsContent) {
    auto* const text = Add<CTextUI>({{L"text", L"one"}});
    auto* const below = Add<CLabelUI>({{L"text", L"below"}});
    EXPECT_EQ(below->GetPos().top, 20);
    text->SetText(L"one\ntwo\n");
    EXPECT_EQ(below->GetPos().top, 40);
    text->SetText(std::wstring(41, L'x'));
    EXPECT_EQ(below->GetPos().top, 40);
    window.SetClientSize({100, 300});
    EXPECT_EQ(below->GetPos().top, 100);
}

TEST_F(HorizontalLayoutTest, WidthsComeFromTheAttributeTheContentAndWhatIsLeft) {
    auto* const fixed = Add<>({{L"width", L"40"}});
    auto* const label = Add<CLabelUI>({{L"text", L"abc"}});
    auto* const spring = Add<>();
    auto* const button = Add<CButtonUI>({{L"text", L"go"}, {L"height", L"30"}});
    EXPECT_EQ(fixed->GetPos(), (CDuiRect{0, 0, 40, 300}));
    EXPECT_EQ(label->GetPos(), (CDuiRect{40, 0, 70, 300}));
    EXPECT_EQ(spring->GetPos(), (CDuiRect{70, 0, 380, 300}));
    EXPECT_EQ(button->GetPos(), (CDuiRect{380, 0, 400, 30}));
}

TEST_F(HorizontalLayoutTest, AWrappingTextTakesWhatIsLeftAndIsAsHighAsItThenNeeds) {
    auto* const row = RowInAPage();
    Add<>({{L"width", L"350"}, {L"height", L"10"}}, row);
    auto* const text = Add<CTextUI>({{L"text", L"0123456789"}}, row);
    EXPECT_EQ(text->GetPos(), (CDuiRect{350, 0, 400, 40}));
    EXPECT_EQ(row->GetHeight(), 40);
}

TEST_F(HorizontalLayoutTest, ARowIsAsHighAsItsHighestChild) {
    auto* const row = RowInAPage({{L"inset", L"0,1,0,2"}, {L"childpadding", L"5"}});
    auto* const a = Add<>({{L"height", L"30"}, {L"width", L"10"}, {L"padding", L"1,2,3,4"}}, row);
    auto* const b = Add<>({{L"width", L"10"}}, row);
    EXPECT_EQ(row->GetHeight(), 39);
    EXPECT_EQ(a->GetPos(), (CDuiRect{1, 3, 11, 33}));
    EXPECT_EQ(b->GetPos(), (CDuiRect{19, 1, 29, 37}));
}

TEST_F(HorizontalLayoutTest, ChildrenThatDoNotFillAreAligned) {
    root->SetAttribute(L"childalign", L"center");
    root->SetAttribute(L"childvalign", L"bottom");
    auto* const a = Add<>({{L"width", L"50"}, {L"height", L"10"}});
    auto* const b = Add<>({{L"width", L"150"}, {L"height", L"20"}});
    EXPECT_EQ(a->GetPos(), (CDuiRect{100, 290, 150, 300}));
    EXPECT_EQ(b->GetPos(), (CDuiRect{150, 280, 300, 300}));
}

TEST_F(HorizontalLayoutTest, ASpringInARowDoesNotMakeTheRowHigher) {
    auto* const row = RowInAPage();
    Add<>({}, row);
    Add<>({{L"width", L"20"}, {L"height", L"20"}}, row);
    EXPECT_EQ(row->GetHeight(), 20);
}

TEST_F(VerticalLayoutTest, AbsurdSizesDoNotOverflow) {
    for (int i = 0; i < 400; ++i) {
        Add<CLabelUI>({{L"height", L"99999999999"}, {L"padding", L"0,99999999999,0,99999999999"}});
        auto* const row = Add<CHorizontalLayoutUI>({{L"inset", L"-9999999999,-9999999999,99999999999,9999999999"}});
        Add<>({{L"width", L"99999999999"}, {L"pos", L"-99999999,-99999999,99999999,99999999"}}, row);
        Add<CTextUI>({{L"text", L"x"}, {L"textpadding", L"99999999,99999999,99999999,-99999999"}}, row);
    }
    for (const unsigned scale : {100u, 4294967295u, 0u, 1u}) {
        CResourceManager::GetInstance()->SetScale(scale ? scale : 1);
        window.Layout();
        for (int i = 0; i < root->GetCount(); ++i) EXPECT_GE(root->GetItemAt(i)->GetHeight(), 0);
    }
}

// ---- GetHeight

TEST_F(VerticalLayoutTest, AFixedHeightIsAnsweredWithoutALayout) {
    auto* const text = Add<CTextUI>({{L"text", L"some text"}});
    auto* const row = Add<CVerticalLayoutUI>();
    window.Layout();
    text->SetText(L"some other text");
    cells.calls = 0;
    row->SetFixedHeight(52);
    EXPECT_EQ(row->GetHeight(), 52);
    EXPECT_EQ(cells.calls, 0);
    EXPECT_EQ(row->GetPos(), (CDuiRect{0, 20, 400, 72})) << "and it is what the layout then gives";
    EXPECT_GT(cells.calls, 0);
}

TEST_F(VerticalLayoutTest, OnlyWhatChangedIsMeasuredAgain) {
    std::vector<CLabelUI*> labels;
    for (int i = 0; i < 50; ++i) {
        auto* const row = Add<CHorizontalLayoutUI>();
        labels.push_back(Add<CLabelUI>({{L"text", L"label"}}, row));
        Add<CTextUI>({{L"text", L"text"}}, row);
    }
    window.Layout();
    cells.calls = 0;
    labels[20]->SetText(L"another");
    window.Layout();
    EXPECT_LE(cells.calls, 4);
    EXPECT_GE(cells.calls, 1);
    cells.calls = 0;
    window.Layout();
    EXPECT_EQ(cells.calls, 0);
}

}  // namespace DuiLib
