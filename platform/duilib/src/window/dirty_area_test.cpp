#include "window/dirty_area.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr CDuiRect kWindow{0, 0, 100, 100};

TEST(DirtyArea, AreasThatDoNotMeetStayApart) {
    DirtyArea dirty;
    dirty.Add({0, 0, 10, 10});
    dirty.Add({20, 0, 30, 10});
    EXPECT_THAT(dirty.Take(kWindow), ElementsAre(CDuiRect{0, 0, 10, 10}, CDuiRect{20, 0, 30, 10}));
    EXPECT_TRUE(dirty.IsEmpty());
}

TEST(DirtyArea, AreasThatOverlapBecomeOneAroundThem) {
    DirtyArea dirty;
    dirty.Add({0, 0, 10, 10});
    dirty.Add({5, 5, 15, 15});
    EXPECT_THAT(dirty.Take(kWindow), ElementsAre(CDuiRect{0, 0, 15, 15}));
}

TEST(DirtyArea, TheOneAroundTwoTakesInWhatItThenOverlaps) {
    DirtyArea dirty;
    dirty.Add({0, 0, 4, 4});
    dirty.Add({0, 20, 4, 24});
    dirty.Add({2, 2, 30, 22});
    EXPECT_THAT(dirty.Take(kWindow), ElementsAre(CDuiRect{0, 0, 30, 24}));
}

TEST(DirtyArea, WhatLiesWithinAnotherAddsNothing) {
    DirtyArea dirty;
    dirty.Add({0, 0, 50, 50});
    dirty.Add({10, 10, 20, 20});
    EXPECT_THAT(dirty.Take(kWindow), ElementsAre(CDuiRect{0, 0, 50, 50}));
}

TEST(DirtyArea, EmptyAreasAndThoseOutsideTheWindowCountForNothing) {
    DirtyArea dirty;
    dirty.Add({10, 10, 10, 20});
    dirty.Add({200, 0, 210, 10});
    EXPECT_THAT(dirty.Take(kWindow), IsEmpty());
}

TEST(DirtyArea, ManyAreasBecomeOne) {
    DirtyArea dirty;
    for (int i = 0; i < 17; ++i) dirty.Add({4 * i, 0, 4 * i + 2, 2});
    EXPECT_THAT(dirty.Take(kWindow), ElementsAre(CDuiRect{0, 0, 66, 2}));
}

}  // namespace
}  // namespace DuiLib
