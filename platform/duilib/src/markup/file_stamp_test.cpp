#include "markup/file_stamp.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

TEST(FileStamp, AnotherContentHasAnotherStamp) {
    const TemporaryFolder folder;
    const auto path = folder.Write("x", "one");
    const auto first = StampOf(path);
    ASSERT_TRUE(first);
    EXPECT_EQ(StampOf(path), first);
    folder.Write("x", "longer");
    EXPECT_NE(StampOf(path), first);
    std::filesystem::remove(path);
    EXPECT_FALSE(StampOf(path));
}

TEST(FileStamp, AFileThatReplacesAnotherHasAnotherStamp) {
    const TemporaryFolder folder;
    const auto path = folder.Write("x", "one");
    const auto first = StampOf(path);
    const auto next = folder.Write("next", "two");
    std::filesystem::last_write_time(next, std::filesystem::last_write_time(path));
    std::filesystem::rename(next, path);
    EXPECT_NE(StampOf(path), first);
}

TEST(FileStamp, AChangeOfJustNowIsNotSettled) {
    const TemporaryFolder folder;
    const FileStamp now = *StampOf(folder.Write("x", "one"));
    constexpr std::int64_t kHour_ns = 3'600'000'000'000;
    EXPECT_FALSE(IsSettled(now));
    FileStamp old = now;
    old.written_ns -= kHour_ns;
    EXPECT_FALSE(IsSettled(old)) << "a time that was set back";
    old.changed_ns -= kHour_ns;
    EXPECT_TRUE(IsSettled(old));
    FileStamp future = old;
    future.written_ns += 2 * kHour_ns;
    EXPECT_FALSE(IsSettled(future));
}

}  // namespace DuiLib
