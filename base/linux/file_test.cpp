#include "base/file.h"

#include <gmock/gmock.h>

#include <system_error>

namespace base {
namespace {

// A device that has no disk refuses, which shows that the system was asked.
TEST(File, ASyncAsksTheSystem) {
    AppendFile nowhere("/dev/null");
    EXPECT_THAT([&] { nowhere.Sync(); }, testing::ThrowsMessage<std::system_error>("/dev/null: Invalid argument"));
}

}  // namespace
}  // namespace base
