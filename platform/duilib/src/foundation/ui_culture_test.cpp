#include "duilib/ui_culture.h"

#include <limits>

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

class UICultureTest : public ToolkitTest {
protected:
    // The error of loading the text as a language file, without the folder.
    std::string ErrorOf(std::string_view text) {
        const auto path = folder.Write("x.xml", text);
        try {
            culture.Load(path);
        } catch (const std::runtime_error& error) {
            const std::string what = error.what();
            EXPECT_TRUE(what.starts_with(path.string() + ":")) << what;
            return what.substr(path.string().size() + 1);
        }
        return "none";
    }

    TemporaryFolder folder;
    UICulture& culture = *UICulture::GetInstance();
};

TEST_F(UICultureTest, ALanguageFileGivesTextsPercentFormAndDirection) {
    culture.SetString(L"IDS_OLD", L"old");
    culture.Load(folder.Write("tr.xml",
                              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                              "<Language name=\"tr-TR\" percent=\"%{0}\" rtl=\"false\">\n"
                              "  <!-- a comment -->\n"
                              "  <Text id=\"IDS_A\">G\xc3\xbc\x6e &amp; <![CDATA[<tag>]]></Text>\n"
                              "  <Text id=\"IDS_EMPTY\"/>\n"
                              "</Language>\n"));
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"G\u00fcn & <tag>");
    EXPECT_EQ(culture.GetString(L"IDS_EMPTY"), L"");
    EXPECT_EQ(culture.GetString(L"IDS_OLD"), L"") << "all texts are replaced";
    EXPECT_EQ(culture.GetPercentString(37), L"%37");
    EXPECT_EQ(culture.GetLanguage(), "tr-TR");
    EXPECT_FALSE(culture.IsRightToLeft());
    culture.Load(folder.Write("ar.xml", "<Language name=\"ar\" rtl=\"true\"/>"));
    EXPECT_TRUE(culture.IsRightToLeft());
    EXPECT_EQ(culture.GetPercentString(-5), L"-5%");
}

TEST_F(UICultureTest, BindTextsAreResolvedAndNothingElse) {
    culture.SetString(L"IDS_A", L"text");
    const std::pair<const wchar_t*, const wchar_t*> table[] = {
        {L"bind='IDS_A'", L"text"}, {L"bind='IDS_B'", L""}, {L"IDS_A", L""},   {L"bind='IDS_A", L""},
        {L"bind=IDS_A", L""},       {L"bind='", L""},       {L"bind=''", L""}, {L"", L""},
    };
    for (const auto& [bind, text] : table) EXPECT_EQ(culture.GetBindString(bind), text);
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"text");
    EXPECT_EQ(culture.GetString(L"bind='IDS_A'"), L"");
}

TEST_F(UICultureTest, NumbersAndPercentagesHaveTheDigitsOfTheLanguage) {
    culture.Load(folder.Write("ar.xml",
                              "<Language name=\"ar\" percent=\"{0}\xd9\xaa\" digits=\"\xd9\xa0\xd9\xa1\xd9\xa2\xd9\xa3"
                              "\xd9\xa4\xd9\xa5\xd9\xa6\xd9\xa7\xd9\xa8\xd9\xa9\"/>"));
    EXPECT_EQ(culture.GetNumberString(1234567890), L"\u0661\u0662\u0663\u0664\u0665\u0666\u0667\u0668\u0669\u0660");
    EXPECT_EQ(culture.GetNumberString(-5), L"-\u0665");
    EXPECT_EQ(culture.GetPercentString(37), L"\u0663\u0667\u066a");
    culture.Load(folder.Write("de.xml", "<Language name=\"de\" percent=\"{0} %\"/>"));
    EXPECT_EQ(culture.GetNumberString(1234567890), L"1234567890") << "a language without digits has the plain ones";
    EXPECT_EQ(culture.GetPercentString(37), L"37 %");
}

TEST_F(UICultureTest, TheSmallestIntegerIsANumberToo) {
    EXPECT_EQ(culture.GetNumberString(std::numeric_limits<int>::min()), L"-2147483648");
    EXPECT_EQ(culture.GetNumberString(0), L"0");
}

TEST_F(UICultureTest, ClearGivesThePlainDigitsBack) {
    culture.Load(folder.Write("x.xml", "<Language name=\"x\" digits=\"abcdefghij\"/>"));
    EXPECT_EQ(culture.GetPercentString(90), L"ja%");
    culture.Clear();
    EXPECT_EQ(culture.GetPercentString(90), L"90%");
}

TEST_F(UICultureTest, ClearLeavesNoTextsAndThePlainPercentForm) {
    culture.SetString(L"IDS_A", L"text");
    culture.SetPercentPattern(L"{0} {0}");
    EXPECT_EQ(culture.GetPercentString(5), L"5 {0}") << "the first place is filled";
    culture.SetPercentPattern(L"none");
    EXPECT_EQ(culture.GetPercentString(5), L"none");
    culture.Clear();
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"");
    EXPECT_EQ(culture.GetPercentString(100), L"100%");
}

TEST_F(UICultureTest, ABrokenFileIsAnErrorWithLineAndReasonAndTheOldTextsStay) {
    culture.SetString(L"IDS_OLD", L"old");
    const std::pair<const char*, const char*> table[] = {
        {"", "1: "},
        {"<Language name=\"x\">\n<Text id=\"A\">a</Text>\n<Text id=\"A\">b</Text></Language>", "3: id \"A\" twice"},
        {"<Language name=\"x\">\n\n<Text>a</Text></Language>", "3: <Text> without id"},
        {"<Language name=\"x\">\n<Text id=\"\">a</Text></Language>", "2: <Text> without id"},
        {"<Language name=\"x\">\n<Text id=\"A\"\n key=\"B\">a</Text></Language>", "3: unknown attribute \"key\""},
        {"<Language name=\"x\">\n<String id=\"A\"/></Language>", "2: only <Text>"},
        {"<Language name=\"x\">\nloose</Language>", "1: only <Text>"},
        {"<Language name=\"x\"><Text id=\"A\">\n<b/></Text></Language>", "2: an element within a text"},
        {"\n<Window/>", "2: the root element is <Window>"},
        {"<Language/>", "1: <Language> without name"},
        {"<Language name=\"x\"\npercent=\"5\"/>", "2: <Language> cannot have percent=\"5\""},
        {"<Language name=\"x\"\ndigits=\"012345678\"/>", "2: <Language> cannot have digits=\"012345678\""},
        {"<Language name=\"x\" digits=\"01234567890\"/>", "1: <Language> cannot have digits"},
        {"<Language name=\"x\" digits=\"\"/>", "1: <Language> cannot have digits=\"\""},
        {"<Language name=\"x\" rtl=\"yes\"/>", "1: <Language> cannot have rtl"},
        {"<Language name=\"x\" size=\"1\"/>", "1: <Language> cannot have size"},
        {"<Language name=\"x\" name=\"y\"/>", "1: attribute \"name\" twice"},
        {"<Language name=\"x\"/>\n<Language name=\"y\"/>", "2: a second root element"},
        {"<Language name=\"x\"/>\ntail", "1: text outside of the root element"},
        {"<Language name=\"x\">\n<Text id=\"A\">\xff</Text></Language>", "2: not UTF-8"},
        {"<Language name=\"x\">\n\n</Language", "3: "},
    };
    for (const auto& [text, error] : table) EXPECT_THAT(ErrorOf(text), ::testing::StartsWith(error)) << text;
    EXPECT_THAT(ErrorOf(std::string_view("<Language name=\"x\"/>\n\0", 22)), ::testing::StartsWith("2: a zero byte"));
    EXPECT_EQ(culture.GetString(L"IDS_OLD"), L"old");
}

TEST_F(UICultureTest, AFileThatIsNotThereOrIsAFolderIsAnError) {
    EXPECT_THROW(culture.Load(folder.Path() / "none.xml"), std::runtime_error);
    EXPECT_THROW(culture.Load(folder.Path()), std::runtime_error);
}

}  // namespace DuiLib
