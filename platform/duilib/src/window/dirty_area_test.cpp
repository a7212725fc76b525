#include "window/dirty_area.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {
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
