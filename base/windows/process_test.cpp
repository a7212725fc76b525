#include "base/process.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace base {
namespace {

TEST(SystemLocale, IsALocaleThatTheSystemKnows) {
    const std::string name = SystemLocale();
    ASSERT_GE(name.size(), 2u);
    EXPECT_TRUE(IsValidLocaleName(std::wstring(name.begin(), name.end()).c_str())) << name;
    EXPECT_EQ(PRIMARYLANGID(LocaleNameToLCID(std::wstring(name.begin(), name.end()).c_str(), 0)),
              PRIMARYLANGID(GetUserDefaultUILanguage()));
}

}  // namespace
}  // namespace base
