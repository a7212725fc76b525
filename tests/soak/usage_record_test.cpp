#include "usage_record.h"

#include <gmock/gmock.h>

namespace soak {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kMegabyte = 1024 * 1024;

TEST(UsageRecord, WhatIsFlatOrGrewWhileItWarmedUpIsNoFinding) {
    UsageRecord record;
    for (std::uint64_t i = 0; i < 10; ++i) record.Add({i * kMegabyte, static_cast<int>(i), static_cast<int>(i)});
    for (int i = 0; i < 90; ++i) record.Add({10 * kMegabyte, 10 + i % 3, 20 + i % 3});
    EXPECT_THAT(record.Findings(), IsEmpty()) << record.Figures();
}

TEST(UsageRecord, WhatGrowsStepByStepIsFound) {
    UsageRecord record;
    for (int i = 0; i < 100; ++i)
        record.Add({(10 * 20 + static_cast<std::uint64_t>(i)) * kMegabyte / 20, 5 + i / 10, 9 + i / 5});
    EXPECT_THAT(record.Findings(),
                ElementsAre("memory: 11.25 MB, then 14.25 MB", "threads: 7, then 13", "handles: 14, then 26"));
}

TEST(UsageRecord, WhatIsLeakedOnPurposeDoesNotCount) {
    UsageRecord record;
    for (std::uint64_t i = 0; i < 100; ++i) record.Add({(10 + i) * kMegabyte, 5, 9}, i * kMegabyte);
    EXPECT_THAT(record.Findings(), IsEmpty()) << record.Figures();
}

TEST(UsageRecord, OutliersAreNoGrowth) {
    UsageRecord record;
    for (int i = 0; i < 100; ++i) record.Add({(i % 5 == 4 && i > 60 ? 90 : 10) * kMegabyte, 5, 9});
    EXPECT_THAT(record.Findings(), IsEmpty()) << record.Figures();
}

TEST(UsageRecord, WarmUpMayLastLonger) {
    UsageRecord record(50);
    for (std::uint64_t i = 0; i < 100; ++i) record.Add({std::min<std::uint64_t>(i, 50) * kMegabyte, 5, 9});
    EXPECT_THAT(record.Findings(), IsEmpty()) << record.Figures();
}

TEST(UsageRecord, TooFewSamplesAreSaid) {
    UsageRecord record;
    for (int i = 0; i < 21; ++i) record.Add({kMegabyte, 1, 1});
    EXPECT_THAT(record.Findings(), ElementsAre("too few samples: 19")) << "two are warm-up";
}

}  // namespace
}  // namespace soak
