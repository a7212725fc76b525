#include "sha256.h"

#include <gmock/gmock.h>

#include "temporary_folder.h"
#include "text_case.h"

namespace update_service {
namespace {

using test_support::TemporaryFolder;
using test_support::WriteFile;

TEST(Sha256, HasThePublishedValues) {
    const test_support::TextCase cases[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {std::string(1000000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    const TemporaryFolder folder;
    for (const auto& c : cases) {
        WriteFile(folder / "file", c.text);
        EXPECT_EQ(Sha256OfFile(folder / "file"), c.expected);
    }
}

TEST(Sha256, StopsWhenAskedTo) {
    const TemporaryFolder folder;
    WriteFile(folder / "file", "abc");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(Sha256OfFile(folder / "file", stop.get_token()), std::nullopt);
}

TEST(Sha256, NamesAFileThatCannotBeRead) {
    const TemporaryFolder folder;
    for (const auto& path : {folder / "missing", folder.Path()}) {
        try {
            Sha256OfFile(path);
            FAIL() << path;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(path.string()));
        }
    }
}

}  // namespace
}  // namespace update_service
