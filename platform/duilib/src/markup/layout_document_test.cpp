// docs/layout.md says what the toolkit does: its examples are built, and its tables name every attribute.
#include <sstream>

#include "base/text.h"
#include "support/toolkit/toolkit_test.h"
#include "tree/control_attributes.h"

namespace DuiLib {

namespace {

std::string Document() {
    std::ifstream file(DUILIB_LAYOUT_DOCUMENT);
    std::ostringstream text;
    text << file.rdbuf();
    EXPECT_FALSE(text.str().empty());
    return text.str();
}

std::vector<std::string> XmlExamples(const std::string& document) {
    constexpr std::string_view kHead = "```xml\n";
    std::vector<std::string> examples;
    for (auto at = document.find(kHead); at != document.npos; at = document.find(kHead, at + 1)) {
        const auto start = at + kHead.size();
        examples.push_back(document.substr(start, document.find("```", start) - start));
    }
    return examples;
}

// The last cell of the table row that begins with the attribute's name, without its marks.
std::string ExampleOf(const std::string& document, const std::string& attribute) {
    const auto row = document.rfind("\n| `" + attribute + "` |");
    if (row == document.npos) return "";
    const std::string line = document.substr(row + 1, document.find('\n', row + 1) - row - 1);
    const auto end = line.rfind("` |");
    const auto start = line.rfind("| `", end) + 3;
    return line.substr(start, end - start);
}

}  // namespace

class LayoutDocumentTest : public ToolkitTest {
protected:
    std::unique_ptr<CControlUI> Build(const std::string& text) {
        return std::unique_ptr<CControlUI>(CDialogBuilder().Create(folder.Write("x.xml", text).wstring()));
    }

    TemporaryFolder folder;
    const std::string document = Document();
};

TEST_F(LayoutDocumentTest, ItsExamplesAreBuiltWithoutAWarning) {
    int layouts = 0;
    int languages = 0;
    for (const std::string& example : XmlExamples(document)) {
        if (example.starts_with("<Window>")) {
            EXPECT_NE(Build(example), nullptr) << example;
            ++layouts;
        } else {
            UICulture::GetInstance()->Load(folder.Write("language.xml", example));
            ++languages;
        }
    }
    EXPECT_GE(layouts, 2);
    EXPECT_GE(languages, 1);
}

TEST_F(LayoutDocumentTest, EveryAttributeHasARowWithAnExampleThatCanBeRead) {
    for (const AttributeRule& rule : AttributeRules()) {
        const std::string name = base::Utf8FromWide(rule.name);
        const std::string example = ExampleOf(document, name);
        EXPECT_TRUE(example.starts_with(name + "=\"")) << name << ": " << example;
        EXPECT_NE(Build("<Window><VerticalLayout " + example + "/></Window>"), nullptr) << example;
        EXPECT_THAT(TakeDiagnostics(), ::testing::IsEmpty()) << example;
    }
}

TEST_F(LayoutDocumentTest, EveryRowOfTheAttributeTablesIsAnAttribute) {
    const std::string attributes = document.substr(document.find("### Attributes"));
    std::istringstream lines(attributes.substr(0, attributes.find("## Language")));
    int rows = 0;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("| `")) continue;
        const std::string name = line.substr(3, line.find('`', 3) - 3);
        EXPECT_NE(FindAttributeRule(base::WideFromUtf8(name)), nullptr) << name;
        ++rows;
    }
    EXPECT_EQ(rows, static_cast<int>(AttributeRules().size()));
}

}  // namespace DuiLib
