#include "work_folder.h"

#include <gmock/gmock.h>

#include <iterator>
#include <set>

#include "temporary_folder.h"
#include "text_case.h"

namespace update_service {
namespace {

using test_support::ReadFile;
using test_support::TemporaryFolder;
using test_support::WriteFile;

TEST(WorkFiles, KeysBecomeSafeFileNames) {
    const test_support::TextCase cases[] = {
        {"pen-01_b.2", "pen-01_b.2"},
        {"../../etc/passwd", "%2E.%2F..%2Fetc%2Fpasswd"},
        {"..", "%2E."},
        {"a b", "a%20b"},
        {"a%20b", "a%2520b"},
        {"c:\\x", "c%3A%5Cx"},
        {"\xC3\xA9", "%C3%A9"},
    };
    for (const auto& c : cases) EXPECT_EQ(SafeFileName(c.text), c.expected);
}

TEST(WorkFiles, EveryByteHasANameOfItsOwn) {
    std::set<std::string> names;
    for (int byte = 0; byte < 256; ++byte) names.insert(SafeFileName({'k', static_cast<char>(byte)}));
    EXPECT_EQ(names.size(), 256u);
}

// On disk, where a system may take "Pen" and "pen" for one file, and "nul" for none.
TEST(WorkFiles, KeysThatDifferHaveFilesThatDo) {
    const TemporaryFolder folder;
    const std::string keys[] = {"pen", "Pen", "PEN", "nul", "con.1", "com1", "lpt9"};
    for (const std::string& key : keys) WriteFile(WorkFilesOf(folder.Path(), key).part, key);
    for (const std::string& key : keys) EXPECT_EQ(ReadFile(WorkFilesOf(folder.Path(), key).part), key);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), std::ssize(keys));
}

TEST(WorkFiles, RemovesWhatIsThere) {
    const TemporaryFolder folder;
    const WorkFiles files = WorkFilesOf(folder.Path(), "pen");
    EXPECT_EQ(files.part.filename(), "pen.part");
    EXPECT_EQ(files.package.filename(), "pen.pkg");
    WriteFile(files.part, "x");
    RemoveWorkFiles(files);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(ServiceState, SurvivesTheRoundTrip) {
    const TemporaryFolder folder;
    const ServiceState state = {
        {"a", {Phase::kDownloading, "1"}}, {"b", {Phase::kPaused, "2"}}, {"c", {Phase::kInstalling, "3"}},
        {"d", {Phase::kInstalled, "4"}},   {"e", {Phase::kFailed, "5"}}, {"\xC3\xA9\"", {Phase::kIdle, ""}},
    };
    WriteState(folder / "state.json", state);
    EXPECT_EQ(ReadState(folder / "state.json"), state);
    WriteState(folder / "state.json", {});
    EXPECT_EQ(ReadState(folder / "state.json"), ServiceState());
}

TEST(ServiceState, IsEmptyWithoutAFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(ReadState(folder / "state.json"), ServiceState());
}

TEST(ServiceState, AFileThatCannotBeUnderstoodIsNamed) {
    const TemporaryFolder folder;
    for (const char* text :
         {"", "{", "[]", "{}", R"({"devices": {"a": {}}})", R"({"devices": {"a": {"phase": "odd", "sha256": ""}}})",
          R"({"devices": {"a": {"phase": 7, "sha256": ""}}})"}) {
        WriteFile(folder / "state.json", text);
        EXPECT_THAT([&] { ReadState(folder / "state.json"); },
                    testing::ThrowsMessage<std::runtime_error>(testing::HasSubstr((folder / "state.json").string())))
            << text;
    }
}

}  // namespace
}  // namespace update_service
