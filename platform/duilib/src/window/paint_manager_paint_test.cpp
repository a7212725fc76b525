// Which part of a window's picture is painted when, and who is woken for it.
#include "support/toolkit/painting_test.h"
#include "window/paint_manager_state.h"

namespace DuiLib {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using RepaintingTest = PaintingTest;

TEST_F(RepaintingTest, NothingIsPaintedWhereNothingChanged) {
    Add({{L"bkcolor", L"#FFFF0000"}});
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 400, 300}));
    EXPECT_THAT(Repainted(), IsEmpty());
}

TEST_F(RepaintingTest, AChangeRepaintsItsControlAlone) {
    auto* const label = Add<CLabelUI>({{L"pos", L"10,20,110,40"}});
    Add<CLabelUI>({{L"pos", L"10,60,110,80"}});
    Repainted();
    label->SetText(L"new");
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{10, 20, 110, 40}));
    label->SetAttribute(L"bkcolor", L"#FFFF0000");
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{10, 20, 110, 40}));
    label->SetAttribute(L"bkcolor", L"#FFFF0000");
    label->SetText(L"new");
    EXPECT_THAT(Repainted(), IsEmpty());
}

TEST_F(RepaintingTest, AControlThatMovesRepaintsWhereItWasAndWhereItIs) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,10,10"}});
    Repainted();
    label->SetAttribute(L"pos", L"50,50,60,60");
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 10, 10}, CDuiRect{50, 50, 60, 60}));
}

TEST_F(RepaintingTest, AControlThatGoesOrComesRepaintsItsPlace) {
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,10,10"}});
    Repainted();
    root->Remove(label);
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 10, 10}));
    Add<CLabelUI>({{L"pos", L"20,20,30,30"}});
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{20, 20, 30, 30}));
}

TEST_F(RepaintingTest, ChangesOfWhatIsNotSeenRepaintNothing) {
    auto* const hidden = Add<CLabelUI>({{L"pos", L"0,0,10,10"}, {L"visible", L"false"}});
    auto* const outside = Add<CLabelUI>({{L"pos", L"500,0,510,10"}});
    Repainted();
    hidden->SetText(L"new");
    outside->SetText(L"new");
    EXPECT_THAT(Repainted(), IsEmpty());
}

TEST_F(RepaintingTest, AnotherSizeScaleOrPictureIsPaintedWhole) {
    Repainted();
    window.SetClientSize({200, 100});
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 200, 100}));
    EXPECT_EQ(picture.Size(), (CDuiSize{200, 100}));
    CResourceManager::GetInstance()->SetScale(150);
    EXPECT_THAT(Repainted(), ElementsAre(CDuiRect{0, 0, 200, 100}));
    PaintSurface other;
    EXPECT_THAT(window.Paint(other), ElementsAre(CDuiRect{0, 0, 200, 100}));
}

TEST_F(RepaintingTest, WhatIsPaintedInPiecesIsWhatIsPaintedWhole) {
    auto* const box = Add<CContainerUI>({{L"pos", L"0,0,100,40"}, {L"bkround", L"28,28"}, {L"bkcolor", L"#330000FF"}});
    auto* const layer = Add({{L"pos", L"20,0,100,0"}, {L"bkcolor", L"#80FFFFFF"}}, box);
    Repainted();
    for (const wchar_t* pos : {L"25,0,100,0", L"50,0,100,0", L"99,0,100,0"}) {
        layer->SetAttribute(L"pos", pos);
        Repainted();
    }
    PaintSurface whole;
    window.Paint(whole);
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 110; ++x) ASSERT_EQ(picture.Pixel(x, y), whole.Pixel(x, y)) << x << "," << y;
    }
}

TEST_F(RepaintingTest, WhoeverPaintsIsWokenOnceForAllChangesSinceThen) {
    Repainted();
    int woken = 0;
    window.SetWakeUp([&woken] { ++woken; });
    auto* const label = Add<CLabelUI>({{L"pos", L"0,0,10,10"}});
    label->SetText(L"a");
    label->SetText(L"b");
    EXPECT_EQ(woken, 1);
    Repainted();
    label->SetText(L"c");
    EXPECT_EQ(woken, 2);
    Repainted();
    Repainted();
    EXPECT_EQ(woken, 2);
}

TEST_F(RepaintingTest, ASurfaceThatWasMadeAnewIsPaintedWholeWhereverItLies) {
    Add({{L"bkcolor", L"#FFFF0000"}});
    std::optional<PaintSurface> surface(std::in_place);
    window.Paint(*surface);
    surface.emplace();
    EXPECT_THAT(window.Paint(*surface), ElementsAre(CDuiRect{0, 0, 400, 300}));
    EXPECT_EQ(surface->Pixel(5, 5), kRed);
}

TEST_F(RepaintingTest, WhatComesOrGoesInAHiddenPlaceWakesToo) {
    auto* const outer = Add<CContainerUI>({{L"visible", L"false"}});
    auto* const heading = Add<CLabelUI>({}, outer);
    Repainted();
    int woken = 0;
    window.SetWakeUp([&woken] { ++woken; });
    heading->SetVisible(false);
    EXPECT_EQ(woken, 1);
}

TEST_F(RepaintingTest, WhatPaintingDoesItselfWakesNobody) {
    auto* const view = Add<CScrollViewUI>();
    Add<CButtonUI>({{L"height", L"1000"}}, view);
    Repainted();
    int woken = 0;
    window.SetWakeUp([&woken] { ++woken; });
    window.MouseWheel({50, 50}, 3);
    EXPECT_EQ(woken, 1);
    auto now = kStart;
    for (auto next = window.Tick(now); next; next = window.NextTick(now)) {
        Repainted();
        EXPECT_GT(*next, now);
        now = *next;
        window.Tick(now);
    }
    EXPECT_EQ(view->GetScrollPos(), 180);
    EXPECT_EQ(woken, 1);
}

// ---- DirtyArea

namespace {

constexpr CDuiRect kWindow{0, 0, 100, 100};

using Areas = std::vector<CDuiRect>;

Areas TakenOf(const Areas& added) {
    DirtyArea dirty;
    for (const CDuiRect& area : added) dirty.Add(area);
    const Areas taken = dirty.Take(kWindow);
    EXPECT_TRUE(dirty.IsEmpty());
    return taken;
}

TEST(DirtyArea, AreasThatMeetBecomeOne) {
    const struct {
        const char* what;
        Areas added, taken;
    } cases[] = {
        {"areas that do not meet stay apart", {{0, 0, 10, 10}, {20, 0, 30, 10}}, {{0, 0, 10, 10}, {20, 0, 30, 10}}},
        {"areas that overlap become one around them", {{0, 0, 10, 10}, {5, 5, 15, 15}}, {{0, 0, 15, 15}}},
        {"that one takes in what it then overlaps", {{0, 0, 4, 4}, {0, 20, 4, 24}, {2, 2, 30, 22}}, {{0, 0, 30, 24}}},
        {"what lies within another adds nothing", {{0, 0, 50, 50}, {10, 10, 20, 20}}, {{0, 0, 50, 50}}},
        {"empty areas and those outside the window count for nothing", {{10, 10, 10, 20}, {200, 0, 210, 10}}, {}},
    };
    for (const auto& c : cases) EXPECT_EQ(TakenOf(c.added), c.taken) << c.what;
}

TEST(DirtyArea, ManyAreasBecomeOne) {
    Areas many;
    for (int i = 0; i < 17; ++i) many.push_back({4 * i, 0, 4 * i + 2, 2});
    EXPECT_EQ(TakenOf(many), (Areas{{0, 0, 66, 2}}));
}

}  // namespace

}  // namespace DuiLib
