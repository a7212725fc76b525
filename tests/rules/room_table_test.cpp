#include "room_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "source_tree.h"

namespace source_rules {
namespace {

const RoomTable kTable = RoomTable::FromMarkdown({
    "# A house",
    "| room | what it is | may include |",
    "| --- | --- | --- |",
    "| `ground` | texts | nothing |",
    "| `shop/include`, `yard/include` | public headers | nothing |",
    "| `shop` | what is sold | `ground`, `*/include`, `<asio/*>` |",
    "| `tools` | for tests | nothing |",
    "| `shop/cellar` | what is stored | `ground`, `shop/list.h` |",
    "| `*_test.cpp` | the tests | `tools`, `<gtest/gtest.h>` |",
    "",
    "| `after` | another table | `ground` |",
});

std::string RoomName(const std::string& file) {
    const Room* room = kTable.RoomOf(file);
    return room != nullptr ? room->folder : "none";
}

TEST(RoomTable, TheInnermostRoomOfAFileCounts) {
    EXPECT_EQ(RoomName("ground/text.h"), "ground");
    EXPECT_EQ(RoomName("shop/linux/door.cpp"), "shop");
    EXPECT_EQ(RoomName("shop/include/shop/door.h"), "shop/include");
    EXPECT_EQ(RoomName("shop/cellar/shelf.cpp"), "shop/cellar");
    EXPECT_EQ(RoomName("shopping/list.cpp"), "none");
    EXPECT_EQ(RoomName("after/list.cpp"), "none") << "the table ends with its rows";
}

TEST(RoomTable, ARoomIncludesItselfAndWhatItsRowNames) {
    EXPECT_TRUE(kTable.MayInclude("shop/door.cpp", "shop/linux/handle.h"));
    EXPECT_TRUE(kTable.MayInclude("shop/door.cpp", "ground/text.h"));
    EXPECT_TRUE(kTable.MayInclude("shop/door.cpp", "yard/include/yard/tree.h"));
    EXPECT_FALSE(kTable.MayInclude("shop/door.cpp", "shop/cellar/shelf.h"));
    EXPECT_FALSE(kTable.MayInclude("ground/text.cpp", "shop/door.h")) << "no include runs up";
}

TEST(RoomTable, AFileOfAnotherRoomMayBeNamed) {
    EXPECT_TRUE(kTable.MayInclude("shop/cellar/shelf.cpp", "shop/list.h"));
    EXPECT_FALSE(kTable.MayInclude("shop/cellar/shelf.cpp", "shop/door.h"));
}

TEST(RoomTable, TestsMayIncludeMoreThanTheirRoom) {
    EXPECT_TRUE(kTable.MayInclude("ground/text_test.cpp", "tools/folder.h"));
    EXPECT_FALSE(kTable.MayInclude("ground/text.cpp", "tools/folder.h"));
    EXPECT_FALSE(kTable.MayInclude("ground/text_test.cpp", "shop/door.h"));
    EXPECT_TRUE(kTable.MayIncludeForeign("ground/text_test.cpp", "gtest/gtest.h"));
}

TEST(RoomTable, ForeignHeadersStandInAngleBrackets) {
    EXPECT_TRUE(kTable.MayIncludeForeign("shop/door.cpp", "asio/post.hpp"));
    EXPECT_FALSE(kTable.MayIncludeForeign("shop/door.cpp", "unistd.h"));
    EXPECT_FALSE(kTable.MayIncludeForeign("ground/text.cpp", "asio/post.hpp"));
}

TEST(RoomTable, APageWithoutTheTableIsAnError) {
    EXPECT_THROW(RoomTable::FromMarkdown({"| folder | what it is |"}), std::runtime_error);
    EXPECT_THROW(RoomTable::FromMarkdown({"| room | what it is | may include |", "| --- | --- | --- |", "| `a` | b |"}),
                 std::runtime_error);
}

}  // namespace
}  // namespace source_rules
