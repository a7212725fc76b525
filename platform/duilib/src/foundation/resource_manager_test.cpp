#include "duilib/resource_manager.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

using ResourceManagerTest = ToolkitTest;

TEST_F(ResourceManagerTest, ScaleRoundsToTheNearestHalvesUp) {
    struct {
        unsigned percent;
        int design;
        int device;
    } const table[] = {
        {100, 7, 7}, {100, -7, -7}, {150, 1, 2},   {150, -1, -1}, {150, -3, -4}, {50, 1, 1},
        {50, -1, 0}, {125, 2, 3},   {125, 10, 13}, {175, 2, 4},   {90, 5, 5},    {90, -5, -4},
        {0, 5, 0},   {1, 49, 0},    {1, 50, 1},    {33, 100, 33}, {9999, 0, 0},  {200, 3, 6},
    };
    for (const auto& row : table) {
        CResourceManager::GetInstance()->SetScale(row.percent);
        EXPECT_EQ(CResourceManager::GetInstance()->Scale(row.design), row.device) << row.percent << " " << row.design;
    }
    CResourceManager::GetInstance()->SetScale(125);
    EXPECT_EQ(CResourceManager::GetInstance()->Scale(CDuiSize{2, 10}), (CDuiSize{3, 13}));
}

TEST_F(ResourceManagerTest, RestoreScaleGoesBackRoundedHalvesUp) {
    struct {
        unsigned percent;
        int device;
        int design;
    } const table[] = {
        {100, 7, 7}, {150, 2, 1}, {150, 1, 1}, {125, 130, 104}, {200, 1, 1}, {200, -1, 0}, {50, 52, 104}, {0, 5, 0},
    };
    for (const auto& row : table) {
        CResourceManager::GetInstance()->SetScale(row.percent);
        EXPECT_EQ(CResourceManager::GetInstance()->RestoreScale(row.device), row.design) << row.percent;
    }
}

TEST_F(ResourceManagerTest, WhatWasScaledUpComesBack) {
    for (const unsigned percent : {100u, 125u, 150u, 175u, 200u, 300u}) {
        CResourceManager::GetInstance()->SetScale(percent);
        for (int design = -50; design <= 400; ++design) {
            const int device = CResourceManager::GetInstance()->Scale(design);
            ASSERT_EQ(CResourceManager::GetInstance()->RestoreScale(device), design) << percent;
        }
    }
}

TEST_F(ResourceManagerTest, ResourcesLieInTheProgramsFolderUnlessABaseIsSet) {
    auto& resources = *CResourceManager::GetInstance();
    const auto program = FolderOfThisTest();
    EXPECT_EQ(resources.Resolve(L"layout/x.xml"), program / "layout/x.xml");
    resources.SetResourceBase("/base/bin");
    EXPECT_EQ(resources.Resolve(L"../components/x.xml"), "/base/components/x.xml");
    EXPECT_EQ(resources.Resolve(L"/somewhere/x.xml"), "/somewhere/x.xml");
    EXPECT_EQ(resources.Resolve(L"\u03a9.xml"), std::filesystem::path(u8"/base/bin/\u03a9.xml"));
}

TEST_F(ResourceManagerTest, AFontThatNobodySetIsTheDefaultFont) {
    auto& resources = *CResourceManager::GetInstance();
    EXPECT_EQ(resources.GetFont(777), FontDescription{});
    resources.SetFont(-1, {"Serif", 20, true});
    EXPECT_EQ(resources.GetFont(777), (FontDescription{"Serif", 20, true}));
    resources.SetFont(778, {});
    EXPECT_EQ(resources.GetFont(778), FontDescription{});
    resources.SetFont(-1, {});
}

class FontSizeMeasurer : public TextMeasurer {
    CDuiSize Measure(std::wstring_view, const FontDescription& font, unsigned, int, bool) override {
        return {font.size, font.size};
    }
};

TEST_F(ResourceManagerTest, AFontOrAMeasurerThatChangesLaysEveryWindowOutAgain) {
    CPaintManagerUI window;
    auto* const page = new CVerticalLayoutUI;
    auto* const label = new CLabelUI;
    page->Add(label);
    window.AttachRoot(page);
    label->SetText(L"x");
    label->SetFont(779);
    EXPECT_EQ(label->GetHeight(), 20);
    FontSizeMeasurer sizes;
    CRenderEngine::SetTextMeasurer(&sizes);
    EXPECT_EQ(label->GetHeight(), 14);
    CResourceManager::GetInstance()->SetFont(779, {"Noto Sans", 30, false});
    EXPECT_EQ(label->GetHeight(), 30);
    label->SetFont(-1);
    EXPECT_EQ(label->GetHeight(), 14);
    CRenderEngine::SetTextMeasurer(&cells);
    EXPECT_EQ(label->GetHeight(), 20);
}

// ---- CRenderEngine

TEST_F(ResourceManagerTest, CalculatingMovesTheFarCornerToWhatTheTextNeeds) {
    CPaintManagerUI window;
    struct {
        const wchar_t* text;
        unsigned style;
        CDuiRect expected;
    } const table[] = {
        {L"0123456789", kTextWordBreak, {5, 6, 45, 66}},
        {L"0123456789", kTextSingleLine, {5, 6, 105, 26}},
        {L"one\ntwo\n", kTextWordBreak, {5, 6, 35, 46}},
        {L"", kTextWordBreak, {5, 6, 5, 6}},
        {L"x", 0, {5, 6, 15, 26}},
    };
    for (const auto& row : table) {
        CDuiRect rect{5, 6, 50, 9999};
        CRenderEngine::DrawText(window.GetPaintDC(), &window, rect, row.text, 0, 9, row.style | kTextCalcRect);
        EXPECT_EQ(rect, row.expected) << ::testing::PrintToString(row.text);
    }
}

TEST_F(ResourceManagerTest, PaintingWithoutASurfaceChangesNothing) {
    CPaintManagerUI window;
    CDuiRect rect{5, 6, 50, 9999};
    CRenderEngine::DrawText(window.GetPaintDC(), &window, rect, L"text", 0, 9, kTextWordBreak);
    EXPECT_EQ(rect, (CDuiRect{5, 6, 50, 9999}));
}

}  // namespace DuiLib
