#include "source_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace source_rules {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The rules themselves, on sources made up.

const RoomTable kRooms = RoomTable::FromMarkdown({
    "| room | what it is | may include |",
    "| --- | --- | --- |",
    "| `ground` | texts | nothing |",
    "| `shop` | what is sold | `ground`, `<asio/*>` |",
});

TEST(SourceRules, AnIncludeThatTheTableDoesNotNameIsFound) {
    const SourceTree sources = {{"ground/text.h", {"#include \"shop/door.h\""}},
                                {"shop/door.h", {"#include <string>", "  # include \"ground/text.h\""}}};
    EXPECT_THAT(CheckIncludes(sources, kRooms), ElementsAre("ground/text.h: may not include shop/door.h"));
}

TEST(SourceRules, HeadersOfTheSystemAreForItsFoldersOnly) {
    const SourceTree sources = {{"ground/text.cpp", {"#include <asio/post.hpp>", "#include <windows.h>"}},
                                {"ground/windows/text.cpp", {"#include <windows.h>"}},
                                {"shop/door.cpp", {"#include <asio/post.hpp>"}}};
    EXPECT_THAT(CheckIncludes(sources, kRooms), ElementsAre("ground/text.cpp: may not include <asio/post.hpp>",
                                                            "ground/text.cpp: may not include <windows.h>"));
}

TEST(SourceRules, FilesWithoutARoomAndRoomsWithoutAFileAreFound) {
    const SourceTree sources = {{"cellar/shelf.h", {"#include \"nowhere.h\""}}, {"ground/text.h", {}}};
    EXPECT_THAT(CheckIncludes(sources, kRooms),
                ElementsAre("shop: is a room without a file", "cellar/shelf.h: stands in no room",
                            "cellar/shelf.h: includes a file that the project does not have: nowhere.h"));
}

TEST(SourceRules, AnIncludeByAPathThatGoesUpIsFound) {
    const SourceTree sources = {{"ground/text.h", {}}, {"shop/door.h", {"#include \"../ground/text.h\""}}};
    EXPECT_THAT(CheckIncludes(sources, kRooms),
                ElementsAre("shop/door.h: includes by a path that goes up: ../ground/text.h"));
}

TEST(SourceRules, TheExportHeaderThatTheBuildMakesIsForTheLibrarysPublicHeaders) {
    const RoomTable rooms = RoomTable::FromMarkdown(
        {"| room | what it is | may include |", "| --- | --- | --- |", "| `platform` | libraries | nothing |"});
    const std::vector<std::string> includes = {"#include \"shop/export.h\""};
    EXPECT_THAT(CheckIncludes({{"platform/shop/include/shop/door.h", includes},
                               {"platform/shop/src/door.cpp", includes},
                               {"platform/ground/include/ground/text.h", includes}},
                              rooms),
                ElementsAre("platform/ground/include/ground/text.h: includes a file that the project does not have: "
                            "shop/export.h",
                            "platform/shop/src/door.cpp: includes a file that the project does not have: "
                            "shop/export.h"));
}

TEST(SourceRules, AFileOfTheSameFolderComesBeforeOneOfTheSameNameElsewhere) {
    const SourceTree sources = {
        {"ground/text.h", {}}, {"shop/text.h", {}}, {"ground/text.cpp", {"#include \"text.h\""}}};
    EXPECT_THAT(CheckIncludes(sources, kRooms), IsEmpty());
}

TEST(SourceRules, QuestionsForTheSystemAreForItsFoldersAndForTestsOnly) {
    const std::vector<std::string> asks = {"#if !defined(_WIN32)"};
    const SourceTree sources = {
        {"ground/door.cpp", {"# ifdef __linux__"}},
        {"ground/text.h", asks},
        {"ground/linux/text.cpp", asks},
        {"ground/text_test.cpp", asks},
        {"ground/linux/text.h", asks},
    };
    EXPECT_THAT(CheckSystems(sources),
                ElementsAre("ground/door.cpp: asks for the system", "ground/linux/text.h: asks for the system",
                            "ground/text.h: asks for the system"));
}

TEST(SourceRules, AFileNamedAfterItsSystemIsFound) {
    EXPECT_THAT(CheckSystems({{"ground/text_win32_test.cpp", {}}, {"ground/windows/text.cpp", {}}}),
                ElementsAre("ground/text_win32_test.cpp: names its system instead of standing in its folder"));
}

TEST(SourceRules, AFieldThatIsMissingInTheCheckOfTheirOrderIsFound) {
    const SourceTree sources = {
        {"shop/door.h",
         {"class SHOP_API Door final : public Wall {", "public:", "    void Open();",
          "    friend struct DoorFieldOrder;", "    std::map<int, Key*> m_keys;  // by number",
          "    const Wall* m_wall = nullptr;", "    bool m_open{false};", "};"}},
        {"shop/till.h", {"template <class Coin>", "struct Till {", "    Coin coin;", "};"}},
        {"shop/door.cpp",
         {"static_assert(InOrder({offsetof(Door, m_keys), offsetof(Door, m_open)}));", "using Cash = Till<int>;",
          "static_assert(offsetof(Cash, coin) == 0);", "static_assert(offsetof(Lock, bolt) == 0);"}}};
    EXPECT_THAT(CheckFieldOrders(sources), ElementsAre("shop/door.cpp: does not check Door::m_wall",
                                                       "shop/door.cpp: checks Lock, which has no fields"));
}

TEST(SourceRules, FourHundredLinesAreEnough) {
    const SourceTree sources = {{"ground/long.cpp", std::vector<std::string>(401)},
                                {"ground/short.cpp", std::vector<std::string>(400)}};
    EXPECT_THAT(CheckLengths(sources), ElementsAre("ground/long.cpp: has more than 400 lines"));
}

// The project's own sources.

const std::filesystem::path kProject = SOURCE_RULES_PROJECT;

const SourceTree& Project() {
    static const SourceTree sources = ReadSources(kProject);
    return sources;
}

std::string Listed(const Violations& violations) {
    std::string text;
    for (const std::string& violation : violations) text += violation + '\n';
    return text;
}

TEST(Project, IncludesOnlyWhatTheTableOfItsArchitectureAllows) {
    const RoomTable rooms = RoomTable::FromMarkdown(ReadLines(kProject / "docs/architecture.md"));
    ASSERT_GT(Project().size(), 300U) << "the sources were not found";
    EXPECT_EQ(Listed(CheckIncludes(Project(), rooms)), "");
}

TEST(Project, KeepsWhatBelongsToOneSystemInItsFolder) { EXPECT_EQ(Listed(CheckSystems(Project())), ""); }

TEST(Project, ChecksTheOrderOfAllFieldsOfAClassOrOfNone) { EXPECT_EQ(Listed(CheckFieldOrders(Project())), ""); }

TEST(Project, HasNoFileOfMoreThanFourHundredLines) { EXPECT_EQ(Listed(CheckLengths(Project())), ""); }

}  // namespace
}  // namespace source_rules
