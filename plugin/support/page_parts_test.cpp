#include "support/page_parts.h"

#include <gtest/gtest.h>

namespace DuiLib {
namespace {

TEST(PageParts, ReplaceFirstFillsTheFirstPlaceholderAlone) {
    EXPECT_EQ(ReplaceFirst(L"Hello {0}, {0}", L"X", L"{0}"), L"Hello X, {0}");
}

TEST(PageParts, ReplaceFirstWithoutThePatternGivesAnEmptyText) {
    EXPECT_EQ(ReplaceFirst(L"Hello", L"X", L"{0}"), L"");
    EXPECT_EQ(ReplaceFirst(L"", L"X", L"{0}"), L"");
}

TEST(PageParts, BindTextWrapsTheIdWithoutEscaping) { EXPECT_EQ(BindText(L"IDS_'X"), L"bind='IDS_'X'"); }

}  // namespace
}  // namespace DuiLib
