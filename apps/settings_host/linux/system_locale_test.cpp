#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

#include "language_choice.h"

namespace settings_host {
namespace {

// The three variables as a test wants them; puts the old values back.
class SystemLocaleTest : public testing::Test {
protected:
    SystemLocaleTest() {
        for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
            const char* const value = std::getenv(name);
            if (value != nullptr) m_old[name] = value;
            unsetenv(name);
        }
    }
    ~SystemLocaleTest() override {
        for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
            if (m_old.contains(name)) {
                setenv(name, m_old[name].c_str(), 1);
            } else {
                unsetenv(name);
            }
        }
    }
    static void Set(const char* name, const char* value) { setenv(name, value, 1); }

private:
    std::map<std::string, std::string> m_old;
};

TEST_F(SystemLocaleTest, AllComesBeforeMessagesAndMessagesBeforeLang) {
    EXPECT_EQ(SystemLocale(), "");
    Set("LANG", "de_DE.UTF-8");
    EXPECT_EQ(SystemLocale(), "de_DE.UTF-8");
    Set("LC_MESSAGES", "fr_FR.UTF-8");
    EXPECT_EQ(SystemLocale(), "fr_FR.UTF-8");
    Set("LC_ALL", "C");
    EXPECT_EQ(SystemLocale(), "C");
}

TEST_F(SystemLocaleTest, AnEmptyVariableCountsAsUnset) {
    Set("LC_ALL", "");
    Set("LC_MESSAGES", "");
    EXPECT_EQ(SystemLocale(), "");
    Set("LANG", "ar_EG");
    EXPECT_EQ(SystemLocale(), "ar_EG");
}

}  // namespace
}  // namespace settings_host
