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

void ExpectChoice(const char* language, std::initializer_list<const char*> locales) {
    for (const char* locale : locales) EXPECT_EQ(ChooseLanguage(kShipped, locale), language) << locale;
}

TEST(LanguageChoice, TheLanguageOfTheVeryRegionComesFirst) {
    ExpectChoice("de-DE", {"de_DE.UTF-8", "DE_de"});
    ExpectChoice("zh-CN", {"zh_CN.GB18030"});
    ExpectChoice("fr-FR", {"fr-FR"});
    ExpectChoice("ja-JP", {"ja_JP.eucJP"});
    ExpectChoice("ar", {"ar"});
    EXPECT_EQ(ChooseLanguage({"de-AT", "de-DE"}, "de_DE"), "de-DE");
    EXPECT_EQ(ChooseLanguage({"de-AT", "de-DE"}, "de_AT@euro"), "de-AT");
}

TEST(LanguageChoice, AnotherRegionGetsTheSameLanguage) {
    ExpectChoice("de-DE", {"de_AT.UTF-8", "de_DE@euro", "de"});
    ExpectChoice("fr-FR", {"fr_CA"});
    ExpectChoice("ar", {"ar_EG", "ar_SA.UTF-8"});
    ExpectChoice("en-US", {"en_GB.UTF-8"});
}

TEST(LanguageChoice, ChineseIsOnlyChosenInItsScript) {
    ExpectChoice("zh-CN", {"zh", "zh_SG.UTF-8", "zh-Hans", "zh_Hans_HK"});
    ExpectChoice("en-US", {"zh_TW.UTF-8", "zh_HK", "zh_MO", "zh-Hant", "zh_Hant_CN"});
    EXPECT_EQ(ChooseLanguage({"zh-CN", "zh-TW"}, "zh_HK.UTF-8"), "zh-TW");
}

TEST(LanguageChoice, WhatNothingSuitsGetsEnglish) {
    ExpectChoice("en-US", {"C", "C.UTF-8", "POSIX", "", "tr_TR.UTF-8", "d", "_DE", ".UTF-8", "@", "__--..@@"});
    EXPECT_EQ(ChooseLanguage({}, "de_DE"), "en-US");
}

TEST(LanguageChoice, ThePseudoLanguageIsOnlyChosenWhenItIsNamed) {
    ExpectChoice("qps-ploc", {"qps-ploc", "qps_PLOC.UTF-8"});
    ExpectChoice("en-US", {"qps", "qps_US", "C"});
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
