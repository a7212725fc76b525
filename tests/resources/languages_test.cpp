// The languages that ship: all of them say everything, in their own form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <filesystem>
#include <map>
#include <pugixml.hpp>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "duilib/duilib.h"
#include "named_in_sources.h"

namespace {

namespace fs = std::filesystem;
using namespace DuiLib;
using named_in_sources::Everywhere;
using testing::Contains;
using testing::SizeIs;

constexpr const char* kReference = "en-US";
constexpr const char* kPseudo = "qps-ploc";
constexpr std::wstring_view kPlaceholder = L"{0}";

fs::path FileOf(const std::string& language) {
    return CResourceManager::GetInstance()->Resolve(L"../components/brindle/res") / "language" / (language + ".xml");
}

// The ids of a language file, as they stand in it.
std::vector<std::string> IdsOf(const std::string& language) {
    pugi::xml_document document;
    EXPECT_TRUE(document.load_file(FileOf(language).c_str())) << language;
    std::vector<std::string> ids;
    for (const pugi::xml_node& text : document.child("Language").children("Text")) {
        ids.emplace_back(text.attribute("id").value());
    }
    return ids;
}

int PlaceholdersIn(const std::wstring& text) {
    int count = 0;
    for (std::size_t at = text.find(kPlaceholder); at != text.npos; at = text.find(kPlaceholder, at + 1)) ++count;
    return count;
}

std::wstring TextOf(const std::string& id) {
    return UICulture::GetInstance()->GetString(std::wstring(id.begin(), id.end())).Str();  // ids are ASCII
}

// One test of each language; the language is loaded.
class Languages : public testing::TestWithParam<const char*> {
protected:
    Languages() { UICulture::GetInstance()->Load(FileOf(GetParam())); }
    ~Languages() override { UICulture::GetInstance()->Clear(); }

    // The texts of the reference language, by their ids.
    static std::map<std::string, std::wstring> ReferenceTexts() {
        UICulture::GetInstance()->Load(FileOf(kReference));
        std::map<std::string, std::wstring> texts;
        for (const std::string& id : IdsOf(kReference)) texts[id] = TextOf(id);
        UICulture::GetInstance()->Load(FileOf(GetParam()));
        return texts;
    }
};

TEST_P(Languages, TheFileIsCalledAfterItsLanguage) { EXPECT_EQ(UICulture::GetInstance()->GetLanguage(), GetParam()); }

TEST_P(Languages, TheIdsAreThoseOfTheReferenceInItsOrder) { EXPECT_EQ(IdsOf(GetParam()), IdsOf(kReference)); }

TEST_P(Languages, NoTextIsEmptyOrHasBlanksAtItsEnds) {
    for (const std::string& id : IdsOf(GetParam())) {
        const std::wstring text = TextOf(id);
        ASSERT_FALSE(text.empty()) << id;
        EXPECT_FALSE(std::iswspace(text.front()) || std::iswspace(text.back())) << id;
    }
}

TEST_P(Languages, PlaceholdersStandWhereTheReferenceHasThem) {
    for (const auto& [id, text] : ReferenceTexts()) {
        EXPECT_EQ(PlaceholdersIn(TextOf(id)), PlaceholdersIn(text)) << id;
        EXPECT_LE(PlaceholdersIn(text), 1) << id;
    }
}

TEST_P(Languages, BracesStandOnlyInPlaceholders) {
    for (const std::string& id : IdsOf(GetParam())) {
        const std::wstring text = TextOf(id);
        EXPECT_EQ(std::count(text.begin(), text.end(), L'{'), PlaceholdersIn(text)) << id;
        EXPECT_EQ(std::count(text.begin(), text.end(), L'}'), PlaceholdersIn(text)) << id;
    }
}

// A language that ships is listed here; the next test makes sure.
INSTANTIATE_TEST_SUITE_P(All, Languages, testing::Values("en-US", "zh-CN", "de-DE", "fr-FR", "ja-JP", "ar", "qps-ploc"),
                         [](const auto& language) {
                             std::string name = language.param;
                             std::erase(name, '-');
                             return name;
                         });

TEST(LanguageFiles, TheSevenAreThereAndNoOthers) {
    std::set<std::string> names;
    for (const fs::directory_entry& file : fs::directory_iterator(FileOf(kReference).parent_path())) {
        names.insert(file.path().filename().string());
    }
    EXPECT_EQ(names, (std::set<std::string>{"ar.xml", "de-DE.xml", "en-US.xml", "fr-FR.xml", "ja-JP.xml",
                                            "qps-ploc.xml", "zh-CN.xml"}));
}

// Ids stand in quotes of either kind: in sources, in layouts and in the catalogue.
TEST(LanguageFiles, EveryTextThatIsNamedIsThereAndEveryOneThatIsThereIsNamed) {
    const std::vector<std::string> all = IdsOf(kReference);
    std::set<std::string> named;
    for (const auto& [id, file] : Everywhere(std::regex(R"re(["'](IDS_\w+)["'])re"))) {
        EXPECT_THAT(all, Contains(id)) << file;
        named.insert(id);
    }
    EXPECT_EQ(std::set<std::string>(all.begin(), all.end()), named);
}

// So a reference with a slip is found: it would be shown as it stands.
TEST(LanguageFiles, EveryTextOfALayoutIsAReference) {
    const auto texts = named_in_sources::InLayouts(std::regex(R"re(\b(?:text|tooltip)="([^"]*)")re"));
    EXPECT_THAT(texts, SizeIs(testing::Ge(10u)));
    for (const auto& [text, file] : texts) {
        EXPECT_TRUE(std::regex_match(text, std::regex("bind='IDS_[A-Z_]+'"))) << text << " in " << file;
    }
}

TEST(LanguageFiles, FourTextsTakeSomething) {
    UICulture::GetInstance()->Load(FileOf(kReference));
    for (const char* id : {"IDS_ACCESSORIES_DRIVER_VERSION", "IDS_ACCESSORIES_APP_VERSION",
                           "IDS_ACCESSORIES_APP_STARTING", "IDS_HOST_RUNNING"}) {
        EXPECT_EQ(PlaceholdersIn(TextOf(id)), 1) << id;
    }
}

TEST(LanguageFiles, NumbersPercentagesAndDirectionAreThoseOfTheLanguage) {
    const struct {
        const char* language;
        const wchar_t* number;
        const wchar_t* percentage;
        bool rightToLeft;
    } table[] = {
        {"en-US", L"1234567890", L"37%", false},
        {"zh-CN", L"1234567890", L"37%", false},
        {"de-DE", L"1234567890", L"37\u00a0%", false},
        {"fr-FR", L"1234567890", L"37\u202f%", false},
        {"ja-JP", L"1234567890", L"37%", false},
        {"ar", L"\u0661\u0662\u0663\u0664\u0665\u0666\u0667\u0668\u0669\u0660", L"\u0663\u0667\u066a", true},
        {"qps-ploc", L"1234567890", L"[37%~]", false},
    };
    for (const auto& expected : table) {
        UICulture::GetInstance()->Load(FileOf(expected.language));
        EXPECT_EQ(UICulture::GetInstance()->GetNumberString(1234567890), expected.number) << expected.language;
        EXPECT_EQ(UICulture::GetInstance()->GetPercentString(37), expected.percentage) << expected.language;
        EXPECT_EQ(UICulture::GetInstance()->IsRightToLeft(), expected.rightToLeft) << expected.language;
    }
}

TEST(LanguageFiles, ThePseudoLanguageIsLongerThanTheEnglishAndInBrackets) {
    UICulture::GetInstance()->Load(FileOf(kReference));
    std::map<std::string, std::wstring> english;
    for (const std::string& id : IdsOf(kReference)) english[id] = TextOf(id);
    UICulture::GetInstance()->Load(FileOf(kPseudo));
    for (const auto& [id, text] : english) {
        const std::wstring pseudo = TextOf(id);
        EXPECT_TRUE(pseudo.starts_with(L'[') && pseudo.ends_with(L']')) << id;
        EXPECT_THAT(pseudo, SizeIs(testing::Ge(text.size() * 135 / 100))) << id;
    }
}

}  // namespace
