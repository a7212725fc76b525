#include "drawing/text_measurer.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

namespace {

const FontDescription kFont;

}  // namespace

TEST(MeasureCache, ATextIsMeasuredOnce) {
    FixedCellMeasurer cells(kCell);
    MeasureCache cache(cells);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(cache.Measure(L"0123456789", kFont, 100, 45, true), (CDuiSize{40, 60}));
    EXPECT_EQ(cells.calls, 1);
}

TEST(MeasureCache, WhatBearsOnTheSizeIsPartOfTheKey) {
    FixedCellMeasurer cells(kCell);
    MeasureCache cache(cells);
    cache.Measure(L"a", kFont, 100, 45, true);
    cache.Measure(L"b", kFont, 100, 45, true);
    cache.Measure(L"a", kFont, 125, 45, true);
    cache.Measure(L"a", kFont, 100, 46, true);
    cache.Measure(L"a", kFont, 100, 45, false);
    cache.Measure(L"a", {"Serif", 14, false}, 100, 45, true);
    cache.Measure(L"a", {"Noto Sans", 15, false}, 100, 45, true);
    cache.Measure(L"a", {"Noto Sans", 14, true}, 100, 45, true);
    EXPECT_EQ(cells.calls, 8);
    cache.Measure(L"a", kFont, 100, 99, false);
    EXPECT_EQ(cells.calls, 8) << "without wrapping the width does not matter";
}

TEST(MeasureCache, ItIsBoundedAndKeepsWhatWasAskedForLast) {
    FixedCellMeasurer cells(kCell);
    MeasureCache cache(cells);
    for (std::size_t i = 0; i < 3 * MeasureCache::kMaxEntries; ++i) {
        cache.Measure(std::to_wstring(i), kFont, 100, 45, false);
        cache.Measure(L"label", kFont, 100, 45, false);
    }
    EXPECT_EQ(cache.EntryCount(), MeasureCache::kMaxEntries);
    EXPECT_EQ(cells.calls, static_cast<int>(3 * MeasureCache::kMaxEntries) + 1);
}

TEST(MeasureCache, LongTextsAreNotKept) {
    FixedCellMeasurer cells(kCell);
    MeasureCache cache(cells);
    const std::wstring text(MeasureCache::kMaxTextLength + 1, L'x');
    cache.Measure(text, kFont, 100, 45, false);
    cache.Measure(text, kFont, 100, 45, false);
    EXPECT_EQ(cells.calls, 2);
    EXPECT_EQ(cache.EntryCount(), 0u);
}

}  // namespace DuiLib
