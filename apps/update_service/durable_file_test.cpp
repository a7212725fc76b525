#include "durable_file.h"

#include <gmock/gmock.h>

#include <system_error>

#include "test_folder.h"

namespace update_service {
namespace {

TEST(DurableFile, GrowsAtItsEnd) {
    const TestFolder folder;
    for (const char* text : {"abc", "def"}) {
        AppendFile file(folder / "file");
        file.Append(text, 3);
        file.Sync();
    }
    EXPECT_EQ(ReadFile(folder / "file"), "abcdef");
    AppendFile file(folder / "file");
    EXPECT_EQ(file.Size(), 6u);
    file.Clear();
    EXPECT_EQ(file.Size(), 0u);
}

TEST(DurableFile, ErrorsNameTheFile) {
    const TestFolder folder;
    EXPECT_THAT([&] { AppendFile(folder / "missing" / "file"); },
                testing::Throws<std::system_error>(testing::Property(
                    &std::system_error::what, testing::HasSubstr((folder / "missing" / "file").string() + ": "))));
    try {
        AppendFile file(folder / "missing" / "file");
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
    if (std::filesystem::exists("/dev/full")) {
        AppendFile full("/dev/full");
        EXPECT_THAT([&] { full.Append("x", 1); },
                    testing::ThrowsMessage<std::system_error>(testing::HasSubstr("No space left on device")));
    }
}

TEST(DurableFile, AReplacedFileHasTheNewContentAndNothingIsLeftBeside) {
    const TestFolder folder;
    WriteFile(folder / "file.new", "left by a crash, and longer");
    ReplaceFile(folder / "file", "one");
    EXPECT_EQ(ReadFile(folder / "file"), "one");
    ReplaceFile(folder / "file", "two");
    EXPECT_EQ(ReadFile(folder / "file"), "two");
    EXPECT_FALSE(std::filesystem::exists(folder / "file.new"));
}

}  // namespace
}  // namespace update_service
