#include "language_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "temporary_folder.h"

namespace settings_host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kShipped = {"ar", "de-DE", "en-US", "fr-FR", "ja-JP", "qps-ploc", "zh-CN"};

void ExpectChoices(const std::vector<std::pair<const char*, const char*>>& table) {
    for (const auto& [locale, language] : table) EXPECT_EQ(ChooseLanguage(kShipped, locale), language) << locale;
}

TEST(LanguageChoice, TheLanguageOfTheVeryRegionComesFirst) {
    ExpectChoices({{"de_DE.UTF-8", "de-DE"},
                   {"zh_CN.GB18030", "zh-CN"},
                   {"fr-FR", "fr-FR"},
                   {"DE_de", "de-DE"},
                   {"ja_JP.eucJP", "ja-JP"},
                   {"ar", "ar"}});
    EXPECT_EQ(ChooseLanguage({"de-AT", "de-DE"}, "de_DE"), "de-DE");
    EXPECT_EQ(ChooseLanguage({"de-AT", "de-DE"}, "de_AT@euro"), "de-AT");
}

TEST(LanguageChoice, AnotherRegionGetsTheSameLanguage) {
    ExpectChoices({{"de_AT.UTF-8", "de-DE"},
                   {"de_DE@euro", "de-DE"},
                   {"de", "de-DE"},
                   {"fr_CA", "fr-FR"},
                   {"ar_EG", "ar"},
                   {"ar_SA.UTF-8", "ar"},
                   {"en_GB.UTF-8", "en-US"}});
}

TEST(LanguageChoice, ChineseIsOnlyChosenInItsScript) {
    ExpectChoices({{"zh", "zh-CN"},
                   {"zh_SG.UTF-8", "zh-CN"},
                   {"zh-Hans", "zh-CN"},
                   {"zh_Hans_HK", "zh-CN"},
                   {"zh_TW.UTF-8", "en-US"},
                   {"zh_HK", "en-US"},
                   {"zh_MO", "en-US"},
                   {"zh-Hant", "en-US"},
                   {"zh_Hant_CN", "en-US"}});
    EXPECT_EQ(ChooseLanguage({"zh-CN", "zh-TW"}, "zh_HK.UTF-8"), "zh-TW");
}

TEST(LanguageChoice, WhatNothingSuitsGetsEnglish) {
    ExpectChoices({{"C", "en-US"},
                   {"C.UTF-8", "en-US"},
                   {"POSIX", "en-US"},
                   {"", "en-US"},
                   {"tr_TR.UTF-8", "en-US"},
                   {"d", "en-US"},
                   {"_DE", "en-US"},
                   {".UTF-8", "en-US"},
                   {"@", "en-US"},
                   {"__--..@@", "en-US"}});
    EXPECT_EQ(ChooseLanguage({}, "de_DE"), "en-US");
}

TEST(LanguageChoice, ThePseudoLanguageIsOnlyChosenWhenItIsNamed) {
    ExpectChoices({{"qps-ploc", "qps-ploc"},
                   {"qps_PLOC.UTF-8", "qps-ploc"},
                   {"qps", "en-US"},
                   {"qps_US", "en-US"},
                   {"C", "en-US"}});
    EXPECT_EQ(ChooseLanguage({"qps-ploc"}, "qps_XX"), "en-US");
}

class AvailableLanguagesTest : public testing::Test {
protected:
    void Write(const char* name) { std::ofstream(m_folder / name) << "<Language/>"; }

    const test_support::TemporaryFolder m_folder;
};

TEST_F(AvailableLanguagesTest, EveryLanguageFileIsALanguage) {
    for (const char* name : {"zh-CN.xml", "ar.xml", "qps-ploc.xml", "readme.txt"}) Write(name);
    EXPECT_THAT(AvailableLanguages(m_folder), ElementsAre("ar", "qps-ploc", "zh-CN"));
}

TEST_F(AvailableLanguagesTest, AFolderThatCannotBeReadHasNone) {
    EXPECT_THAT(AvailableLanguages(m_folder), IsEmpty());
    EXPECT_THAT(AvailableLanguages(m_folder / "none"), IsEmpty());
    Write("file");
    EXPECT_THAT(AvailableLanguages(m_folder / "file"), IsEmpty());
}

}  // namespace
}  // namespace settings_host
