#include "base/path.h"

#include <gtest/gtest.h>

namespace base {
namespace {

constexpr const char* kName = "ger\xC3\xA4t \xE6\xBC\xA2\xF0\x9F\x94\x96.json";

TEST(Path, SurvivesTheWayThroughItsText) {
    EXPECT_EQ(Utf8FromPath(PathFromUtf8(kName)), kName);
    EXPECT_EQ(Utf8FromPath({}), "");
    EXPECT_EQ(PathFromUtf8("a/b").filename(), "b");
}

TEST(Path, IsNotReadInTheSystemsCodePage) {
    EXPECT_TRUE(PathFromUtf8(kName).u8string() == std::u8string(reinterpret_cast<const char8_t*>(kName)));
}

TEST(Path, TheProgramsFolderHoldsThisTest) {
    const std::filesystem::path folder = ProgramFolder();
    EXPECT_TRUE(folder.is_absolute());
    EXPECT_TRUE(std::filesystem::exists(folder / "base_test") || std::filesystem::exists(folder / "base_test.exe"));
}

}  // namespace
}  // namespace base
