#include "work_files.h"

#include <set>

#include "test_folder.h"

namespace update_service {
namespace {

TEST(WorkFiles, KeysBecomeSafeFileNames) {
    struct Case {
        std::string key;
        const char* expected;
    };
    const Case cases[] = {
        {"pen-01_B.2", "pen-01_B.2"},
        {"../../etc/passwd", "%2E.%2F..%2Fetc%2Fpasswd"},
        {"..", "%2E."},
        {"a b", "a%20b"},
        {"a%20b", "a%2520b"},
        {"C:\\x", "C%3A%5Cx"},
        {"\xC3\xA9", "%C3%A9"},
    };
    for (const Case& c : cases) EXPECT_EQ(SafeFileName(c.key), c.expected);
}

TEST(WorkFiles, EveryByteHasANameOfItsOwn) {
    std::set<std::string> names;
    for (int byte = 0; byte < 256; ++byte) names.insert(SafeFileName({'k', static_cast<char>(byte)}));
    EXPECT_EQ(names.size(), 256u);
}

TEST(WorkFiles, RemovesWhatIsThere) {
    const TestFolder folder;
    const WorkFiles files = WorkFilesOf(folder.Path(), "pen");
    EXPECT_EQ(files.part.filename(), "pen.part");
    EXPECT_EQ(files.package.filename(), "pen.pkg");
    WriteFile(files.part, "x");
    RemoveWorkFiles(files);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

}  // namespace
}  // namespace update_service
