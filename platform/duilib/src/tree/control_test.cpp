#include "duilib/control.h"

#include <tuple>

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

using ControlTest = WindowTest<CVerticalLayoutUI>;

TEST_F(ControlTest, AFreshControlHasTheDocumentedDefaults) {
    CControlUI control;
    EXPECT_EQ(control.GetName(), L"");
    EXPECT_EQ(control.GetText(), L"");
    EXPECT_EQ(control.GetToolTip(), L"");
    EXPECT_EQ(control.GetVirtualWnd(), L"");
    EXPECT_TRUE(control.IsVisible());
    EXPECT_TRUE(control.IsEnabled());
    EXPECT_EQ(control.GetFont(), -1);
    EXPECT_EQ(control.GetFixedHeight(), 0);
    EXPECT_EQ(control.GetFixedWidth(), 0);
    EXPECT_FALSE(control.HasAttribute(L"width"));
    EXPECT_EQ(control.GetParent(), nullptr);
    EXPECT_EQ(control.GetManager(), nullptr);
}

TEST_F(ControlTest, ClassesAreCalledAsInLayoutFiles) {
    EXPECT_EQ(CControlUI().GetClass(), L"Control");
    EXPECT_EQ(CLabelUI().GetClass(), L"Label");
    EXPECT_EQ(CTextUI().GetClass(), L"Text");
    EXPECT_EQ(CButtonUI().GetClass(), L"Button");
    EXPECT_EQ(CContainerUI().GetClass(), L"Container");
    EXPECT_EQ(CVerticalLayoutUI().GetClass(), L"VerticalLayout");
    EXPECT_EQ(CHorizontalLayoutUI().GetClass(), L"HorizontalLayout");
}

TEST_F(ControlTest, AReaderIsToldWhatAControlIs) {
    EXPECT_EQ(CControlUI().GetRole(), ControlRole::kNone);
    EXPECT_EQ(CLabelUI().GetRole(), ControlRole::kLabel);
    EXPECT_EQ(CTextUI().GetRole(), ControlRole::kLabel);
    EXPECT_EQ(CButtonUI().GetRole(), ControlRole::kButton);
    EXPECT_EQ(CHorizontalLayoutUI().GetRole(), ControlRole::kContainer);
    CLabelUI label;
    const std::pair<const wchar_t*, ControlRole> table[] = {
        {L"button", ControlRole::kButton},     {L"container", ControlRole::kContainer},
        {L"progress", ControlRole::kProgress}, {L"nonsense", ControlRole::kProgress},
        {L"label", ControlRole::kLabel},
    };
    for (const auto& [text, expected] : table) {
        label.SetAttribute(L"role", text);
        EXPECT_EQ(label.GetRole(), expected) << testing::PrintToString(std::wstring(text));
    }
}

TEST_F(ControlTest, AReaderIsToldHowMuchOfABarIsDone) {
    const std::tuple<const wchar_t*, int, int> table[] = {
        {L"44,0,120,0", 44, 120}, {L"0,0,120,0", 0, 120}, {L"120,0,120,0", 120, 120}, {L"130,0,120,0", 120, 120},
        {L"-5,0,120,0", 0, 120},  {L"nonsense", 0, 120},  {L"7,0,0,0", 0, 0},         {L"-9,0,-5,0", 0, 0},
    };
    CControlUI layer;
    layer.SetAttribute(L"role", L"progress");
    EXPECT_EQ(layer.GetProgress().whole, 0) << "nothing is known";
    for (const auto& [pos, done, whole] : table) {
        layer.SetAttribute(L"pos", pos);
        EXPECT_EQ(layer.GetProgress().done, done) << testing::PrintToString(std::wstring(pos));
        EXPECT_EQ(layer.GetProgress().whole, whole) << testing::PrintToString(std::wstring(pos));
    }
    CControlUI other;
    other.SetAttribute(L"pos", L"44,0,120,0");
    EXPECT_EQ(other.GetProgress().whole, 0) << "a place is no progress";
}

TEST_F(ControlTest, TextAndToolTipAreWhatWasSetLast) {
    CLabelUI label;
    label.SetText(L"one");
    label.SetToolTip(L"tip");
    EXPECT_EQ(label.GetText(), L"one");
    label.SetText(label.GetText());
    EXPECT_EQ(label.GetText(), L"one");
    label.SetText(L"");
    label.SetToolTip(L"");
    EXPECT_EQ(label.GetText(), L"");
    EXPECT_EQ(label.GetToolTip(), L"");
}

TEST_F(ControlTest, AControlKeepsItsNameWhileItIsRenamedAfterItself) {
    auto* const label = Add<CLabelUI>({{L"name", L"version"}});
    label->SetName(std::wstring(L"X1") + label->GetName().Str());
    EXPECT_EQ(label->GetName(), L"X1version");
    EXPECT_EQ(window.FindControl(L"X1version"), label);
    EXPECT_EQ(window.FindControl(L"version"), nullptr);
}

// ---- Attributes

TEST_F(ControlTest, AnAttributeKeepsTheTextLastGivenWhateverHappensToTheProperty) {
    CControlUI control;
    control.SetAttribute(L"height", L"72");
    control.SetFixedHeight(52);
    EXPECT_EQ(control.GetAttribute(L"height"), L"72");
    EXPECT_EQ(control.GetFixedHeight(), 52);
    control.SetAttribute(L"height", L"40");
    EXPECT_EQ(control.GetAttribute(L"height"), L"40");
    EXPECT_EQ(control.GetFixedHeight(), 40);
}

TEST_F(ControlTest, AValueThatCannotBeReadIsKeptWithoutEffect) {
    CControlUI control;
    control.SetAttribute(L"width", L"40");
    control.SetAttribute(L"width", L"forty");
    control.SetAttribute(L"visible", L"perhaps");
    control.SetAttribute(L"pos", L"1,2,3");
    control.SetAttribute(L"inset", L"1,2,3,4");  // no container
    EXPECT_EQ(control.GetAttribute(L"width"), L"forty");
    EXPECT_EQ(control.GetFixedWidth(), 40);
    EXPECT_TRUE(control.IsVisible());
    EXPECT_EQ(control.GetAttribute(L"inset"), L"1,2,3,4");
}

TEST_F(ControlTest, ANameThatNobodyKnowsIsKept) {
    CControlUI control;
    control.SetAttribute(L"frobnicate", L"yes");
    control.SetAttribute(L"", L"nothing");
    EXPECT_TRUE(control.HasAttribute(L"frobnicate"));
    EXPECT_EQ(control.GetAttribute(L"frobnicate"), L"yes");
    EXPECT_FALSE(control.HasAttribute(L""));
    EXPECT_EQ(control.GetAttribute(L"never"), L"");
}

TEST_F(ControlTest, AnEmptyAttributeIsThere) {
    CControlUI control;
    control.SetAttribute(L"bkimage", L"");
    EXPECT_TRUE(control.HasAttribute(L"bkimage"));
    EXPECT_EQ(control.GetAttribute(L"bkimage"), L"");
}

TEST_F(ControlTest, AttributesSetTheProperties) {
    CTextUI text;
    const std::pair<const wchar_t*, const wchar_t*> attributes[] = {
        {L"name", L"devInfo"},       {L"text", L"Fixes sleep."}, {L"tooltip", L"tip"}, {L"visible", L"false"},
        {L"enabled", L"false"},      {L"width", L"400"},         {L"height", L"20"},   {L"font", L"9"},
        {L"textcolor", L"99000000"}, {L"virtualwnd", L"page"}};
    for (const auto& [name, value] : attributes) text.SetAttribute(name, value);
    EXPECT_EQ(text.GetName(), L"devInfo");
    EXPECT_EQ(text.GetText(), L"Fixes sleep.");
    EXPECT_EQ(text.GetToolTip(), L"tip");
    EXPECT_FALSE(text.IsVisible());
    EXPECT_FALSE(text.IsEnabled());
    EXPECT_EQ(text.GetFixedWidth(), 400);
    EXPECT_EQ(text.GetFixedHeight(), 20);
    EXPECT_EQ(text.GetFont(), 9);
    EXPECT_EQ(text.GetTextColor(), 0x99000000u);
    EXPECT_EQ(text.GetVirtualWnd(), L"page");
}

TEST_F(ControlTest, TextAlignmentIsPartOfTheTextStyle) {
    CLabelUI label;
    label.SetAttribute(L"align", L"center");
    label.SetAttribute(L"valign", L"bottom");
    label.SetAttribute(L"endellipsis", L"true");
    EXPECT_EQ(label.GetTextStyle(), kTextSingleLine | kTextCenter | kTextBottom | kTextEndEllipsis);
    label.SetAttribute(L"align", L"right");
    label.SetAttribute(L"valign", L"center");
    label.SetAttribute(L"endellipsis", L"false");
    EXPECT_EQ(label.GetTextStyle(), kTextSingleLine | kTextRight | kTextVCenter);
    label.SetAttribute(L"align", L"left");
    label.SetAttribute(L"valign", L"top");
    EXPECT_EQ(label.GetTextStyle(), kTextSingleLine);
}

TEST_F(ControlTest, ABindTextIsResolvedByTheLanguage) {
    UICulture::GetInstance()->SetString(L"IDS_X", L"Update");
    CLabelUI label;
    label.SetAttribute(L"text", L"bind='IDS_X'");
    label.SetAttribute(L"tooltip", L"bind='IDS_X'");
    EXPECT_EQ(label.GetText(), L"Update");
    EXPECT_EQ(label.GetToolTip(), L"Update");
    EXPECT_EQ(label.GetAttribute(L"text"), L"bind='IDS_X'");
    label.SetAttribute(L"text", L"bind='IDS_UNKNOWN'");
    EXPECT_EQ(label.GetText(), L"");
    label.SetText(L"bind='IDS_X'");
    EXPECT_EQ(label.GetText(), L"bind='IDS_X'") << "a text set by code is taken as it stands";
}

// ---- Fixed sizes

TEST_F(ControlTest, FixedSizesAreDesignPixelsTimesTheScaleHalvesUp) {
    struct {
        unsigned scale;
        int design;
        int device;
    } const table[] = {
        {100, 120, 120}, {125, 120, 150},  {125, 1, 1},  {125, 2, 3}, {150, 1, 2},  {150, 3, 5},
        {175, 2, 4},     {75, 2, 2},       {75, 1, 1},   {50, 1, 1},  {50, 3, 2},   {90, 5, 5},
        {0, 120, 0},     {200, 560, 1120}, {90, 76, 68}, {110, 5, 6}, {100, -5, 0},
    };
    for (const auto& row : table) {
        CResourceManager::GetInstance()->SetScale(row.scale);
        CControlUI control;
        control.SetFixedHeight(row.design);
        control.SetAttribute(L"width", std::to_wstring(row.design));
        EXPECT_EQ(control.GetFixedHeight(), row.device) << row.scale << " % of " << row.design;
        EXPECT_EQ(control.GetFixedWidth(), row.device) << row.scale << " % of " << row.design;
    }
}

TEST_F(ControlTest, AHeightInPixelsStaysWhenTheScaleChangesAndOneInDesignPixelsFollows) {
    auto* const design = Add<>({{L"height", L"10"}});
    auto* const pixels = Add<>();
    pixels->SetFixedHeightInPixels(33);
    EXPECT_EQ(pixels->GetHeight(), 33);
    CResourceManager::GetInstance()->SetScale(150);
    EXPECT_EQ(design->GetFixedHeight(), 15);
    EXPECT_EQ(design->GetHeight(), 15);
    EXPECT_EQ(pixels->GetFixedHeight(), 33);
    EXPECT_EQ(pixels->GetPos(), (CDuiRect{0, 15, 400, 48}));
    pixels->SetFixedHeight(33);
    EXPECT_EQ(pixels->GetFixedHeight(), 50);
}

TEST_F(ControlTest, SizesAreZeroOutsideATreeAndWhileTheControlItselfIsHidden) {
    CControlUI* const control = Make<>({{L"height", L"10"}, {L"width", L"20"}});
    EXPECT_EQ(control->GetHeight(), 0);
    EXPECT_EQ(control->GetWidth(), 0);
    root->Add(control);
    EXPECT_EQ(control->GetHeight(), 10);
    EXPECT_EQ(control->GetWidth(), 20);
    control->SetVisible(false);
    EXPECT_EQ(control->GetHeight(), 0);
    EXPECT_EQ(control->GetWidth(), 0);
    EXPECT_EQ(control->GetPos(), CDuiRect{});
}

TEST_F(ControlTest, SizesAreKeptWhileAContainerIsHidden) {
    auto* const page = Add<CVerticalLayoutUI>();
    auto* const fixed = Add<>({{L"height", L"10"}, {L"width", L"20"}}, page);
    auto* const placed = Add<>({{L"pos", L"1,2,31,42"}}, page);
    auto* const label = Add<CLabelUI>({{L"text", L"Update"}}, page);
    window.Layout();
    page->SetVisible(false);
    EXPECT_TRUE(fixed->IsVisible());
    for (const auto& [control, width, height] :
         {std::tuple<CControlUI*, int, int>{fixed, 20, 10}, {placed, 30, 40}, {label, 400, 20}}) {
        EXPECT_EQ(control->GetWidth(), width);
        EXPECT_EQ(control->GetHeight(), height);
        EXPECT_EQ(control->GetPos(), CDuiRect{});
    }
    fixed->SetFixedHeight(52);
    EXPECT_EQ(fixed->GetHeight(), 52);
    EXPECT_EQ(page->GetHeight(), 0);
}

// ---- Text rectangle

TEST_F(ControlTest, TheTextRectangleIsTheTextWithItsPaddingWithinTheAvailableSize) {
    auto* const label = Add<CLabelUI>({{L"text", L"Update"}, {L"textpadding", L"3,4,5,6"}});
    EXPECT_EQ(label->GetTextRect({9999, 9999}), (CDuiRect{0, 0, 68, 30}));
    EXPECT_EQ(label->GetTextRect({50, 25}), (CDuiRect{0, 0, 50, 25}));
    CResourceManager::GetInstance()->SetScale(150);
    EXPECT_EQ(label->GetTextRect({9999, 9999}), (CDuiRect{0, 0, 5 + 90 + 8, 6 + 30 + 9}));
    label->SetText(L"");
    EXPECT_EQ(label->GetTextRect({9999, 9999}), (CDuiRect{0, 0, 13, 15}));
}

TEST_F(ControlTest, ATextWrapsItsTextRectangleAndALabelDoesNot) {
    CTextUI text;
    text.SetText(L"0123456789");
    EXPECT_EQ(text.GetTextRect({45, 999}), (CDuiRect{0, 0, 40, 60}));
    CLabelUI label;
    label.SetText(L"0123456789");
    EXPECT_EQ(label.GetTextRect({45, 999}), (CDuiRect{0, 0, 45, 20}));
}

}  // namespace DuiLib
