// The example of a host, in a folder of its own, and what the README shows of it.

#include "page_e2e_test.h"

namespace e2e {
namespace {

class MinimalHostTest : public PageE2ETest {
protected:
    static inline const std::string kComponents = COMPONENTS_FOLDER;

    MinimalHostTest() {
        std::filesystem::create_directory(m_folder / "elsewhere");
        std::filesystem::copy_file(MINIMAL_HOST_PROGRAM, m_folder / "elsewhere" / "minimal_host");
    }

    test_process::Process Run(const std::string& components, const std::string& seconds) const {
        return {m_folder / "elsewhere" / "minimal_host", {PAGE_MODULE, components, seconds}, Environment()};
    }
};

TEST_F(MinimalHostTest, ShowsThePageFromWhereverItLies) {
    for (const char* key : {"pen", "dock"}) AddAccessory(key);
    StartService();
    auto host = Run(kComponents, "30");
    EXPECT_EQ(host.WaitForEnd(), 0) << host.Errors().Text();
    EXPECT_THAT(host.Output().Lines(), Contains("content height 77"));
}

TEST_F(MinimalHostTest, FailsWhenThePageStaysEmpty) {
    auto host = Run(kComponents, "0");  // without a service
    EXPECT_EQ(host.WaitForEnd(), 1);
    EXPECT_THAT(host.Errors().Text(), HasSubstr("minimal_host: the page stays empty\n"));
}

TEST_F(MinimalHostTest, FailsWithoutItsResources) {
    auto host = Run((m_folder / "components").string(), "30");
    EXPECT_EQ(host.WaitForEnd(), 1);
    EXPECT_THAT(host.Errors().Text(), testing::ContainsRegex("minimal_host: .*en-US.xml.*: the file cannot be read"));
}

// The code of a line, without blanks around it and what it says behind it.
std::string CodeOf(std::string line) {
    line.resize(std::min(line.size(), line.find("//")));
    const auto isBlank = [](char letter) { return letter == ' '; };
    line.erase(line.begin(), std::find_if_not(line.begin(), line.end(), isBlank));
    line.erase(std::find_if_not(line.rbegin(), line.rend(), isBlank).base(), line.end());
    return line;
}

std::vector<std::string> CodeLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!CodeOf(line).empty()) lines.push_back(CodeOf(line));
    }
    return lines;
}

TEST(Readme, ItsSnippetStandsInTheExampleLineByLine) {
    const std::filesystem::path project = PROJECT_FOLDER;
    const std::string readme = ReadFile(project / "README.md");
    constexpr std::string_view kBegin = "```cpp\n";
    const std::size_t begin = readme.find(kBegin);
    ASSERT_NE(begin, std::string::npos);
    const std::size_t from = begin + kBegin.size();
    const auto snippet = CodeLines(readme.substr(from, readme.find("```", from) - from));
    EXPECT_THAT(snippet, testing::SizeIs(testing::Ge(4u)));
    const auto example = CodeLines(ReadFile(project / "docs/examples/minimal_host.cpp"));
    auto next = example.begin();
    for (const std::string& line : snippet) {
        next = std::find(next, example.end(), line);
        ASSERT_NE(next, example.end()) << line;
    }
}

}  // namespace
}  // namespace e2e
