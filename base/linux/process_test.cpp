#include "base/process.h"

#include <gtest/gtest.h>

#include <map>

namespace base {
namespace {

constexpr const char* kNames[] = {"LC_ALL", "LC_MESSAGES", "LANG"};

// Without the three variables, which get their old values back.
class SystemLocaleTest : public testing::Test {
protected:
    SystemLocaleTest() {
        for (const char* const name : kNames) {
            m_old[name] = Variable(name);
            SetVariable(name, {});
        }
    }
    ~SystemLocaleTest() override {
        for (const auto& [name, value] : m_old) SetVariable(name, value);
    }

private:
    std::map<std::string, std::optional<std::string>> m_old;
};

TEST_F(SystemLocaleTest, AllComesBeforeMessagesAndMessagesBeforeLang) {
    EXPECT_EQ(SystemLocale(), "");
    SetVariable("LANG", "de_DE.UTF-8");
    EXPECT_EQ(SystemLocale(), "de_DE.UTF-8");
    SetVariable("LC_MESSAGES", "fr_FR.UTF-8");
    EXPECT_EQ(SystemLocale(), "fr_FR.UTF-8");
    SetVariable("LC_ALL", "C");
    EXPECT_EQ(SystemLocale(), "C");
}

TEST_F(SystemLocaleTest, AnEmptyVariableCountsAsUnset) {
    SetVariable("LC_ALL", "");
    SetVariable("LC_MESSAGES", "");
    EXPECT_EQ(SystemLocale(), "");
    SetVariable("LANG", "ar_EG");
    EXPECT_EQ(SystemLocale(), "ar_EG");
}

}  // namespace
}  // namespace base
