#include "service_state.h"

#include <gmock/gmock.h>

#include "temporary_folder.h"

namespace update_service {
namespace {

using test_support::TemporaryFolder;
using test_support::WriteFile;

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
