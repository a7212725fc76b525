// The messages, against themselves and against the document that strangers write peers by.
#include "channel/messages.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>
#include <vector>

namespace channel {
namespace {

// The cells of every table row of docs/protocol.md.
std::vector<std::vector<std::string>> DocumentedRows() {
    std::ifstream document(ACCESSORY_PROTOCOL_DOCUMENT);
    EXPECT_TRUE(document.is_open());
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(document, line);) {
        if (!line.starts_with("| ")) continue;
        std::istringstream cells(line.substr(2));
        rows.emplace_back();
        for (std::string cell; std::getline(cells, cell, '|');) {
            const auto end = cell.find_last_not_of(' ');
            const auto begin = cell.find_first_not_of(' ');
            rows.back().push_back(end == std::string::npos ? "" : cell.substr(begin, end - begin + 1));
        }
    }
    return rows;
}

std::string Hex(std::int32_t id) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(id));
    return text;
}

TEST(Messages, HasEachIdOnceADirection) {
    for (const MessageInfo& a : kMessages) {
        for (const MessageInfo& b : kMessages) {
            EXPECT_TRUE(&a == &b || a.id != b.id || a.direction != b.direction) << a.name;
        }
    }
    EXPECT_EQ(std::size(kMessages), 7u + 4u);
}

TEST(Messages, AreFoundByIdAndEndpoint) {
    const MessageInfo* const list = FindMessage(0xB20027, IPC_ENDPOINT_PLUGIN);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->direction, Direction::kToPage);
    EXPECT_STREQ(list->payload, "list");
    const MessageInfo* const ready = FindMessage(0xB20027, IPC_ENDPOINT_UPDATE_SERVICE);
    ASSERT_NE(ready, nullptr);
    EXPECT_EQ(ready->direction, Direction::kFromPage);
    EXPECT_STREQ(ready->payload, "none");
    EXPECT_EQ(FindMessage(0xB20022, IPC_ENDPOINT_PLUGIN), nullptr) << "it goes to the service";
}

// | id | name | to | meaning | payload |
TEST(Messages, StandsInTheProtocolDocument) {
    const auto rows = DocumentedRows();
    for (const MessageInfo& message : kMessages) {
        int found = 0;
        for (const auto& row : rows) {
            found += row.size() == 5 && row[0] == Hex(message.id) && row[1] == "`" + std::string(message.name) + "`" &&
                     row[2] == Hex(message.endpoint) && row[4].starts_with(message.payload);
        }
        EXPECT_EQ(found, 1) << message.name << " to " << Hex(message.endpoint);
    }
}

TEST(Messages, HaveTheirNumbersAndPipesTheirNames) {
    EXPECT_STREQ(IPC_PIPE_ASSISTANT, L"\\\\.\\Pipe\\iKorvelAssistant");
    EXPECT_STREQ(IPC_PIPE_BASIC_SERVICE, L"\\\\.\\Pipe\\iKorvelBasicService");
    EXPECT_STREQ(IPC_PIPE_DIAGNOSTICS, L"\\\\.\\Pipe\\iVantorService");
    EXPECT_STREQ(IPC_BODY_KEY, L"body");
    using testing::ElementsAre;
    EXPECT_THAT(IPC_MODULE_NAMES,
                ElementsAre(testing::StrEq("orrin"), testing::StrEq("orrinNet"), testing::StrEq("deskwarden"),
                            testing::StrEq("postrell"), testing::StrEq("keelService"), testing::StrEq("brindle")));
    EXPECT_EQ(IPC_ENDPOINT_PLUGIN, 2555904);
    EXPECT_EQ(IPC_ENDPOINT_UPDATE_SERVICE, 11665409);
    EXPECT_EQ(IPC_ENDPOINT_HOST_PLUGIN, 0xB20018);
    EXPECT_EQ(IPC_ENDPOINT_HOST_LAYOUT, 1769472);
    EXPECT_EQ(IPC_ENDPOINT_HOST_STATUS, 131072);
    EXPECT_EQ(from_page::IPC_MSG_DOWNLOAD_START.id, 0xB20022);
    EXPECT_EQ(to_page::IPC_MSG_DOWNLOAD_PROCESS.id, 11665443);
    EXPECT_EQ(to_page::IPC_MSG_PKG_FINISH.id, 11665444);
    EXPECT_EQ(from_page::IPC_MSG_DOWNLOAD_PAUSE.id, 0xB20025);
    EXPECT_EQ(to_page::IPC_MSG_PKG_FAIL.id, 11665446);
    EXPECT_EQ(from_page::IPC_MSG_ALL_UPDATE_DATA.id, 0xB20027);
    EXPECT_EQ(to_page::IPC_MSG_ALL_UPDATE_DATA.id, 11665447);
    EXPECT_EQ(from_page::IPC_MSG_PLUGIN_UPDATE.id, 0xB20033);
    EXPECT_EQ(from_page::IPC_MSG_PLUGIN_UPDATE_FINISH.id, 0xB20034);
    EXPECT_EQ(from_page::IPC_MSG_CONTENT_HEIGHT.id, 3801190);
    EXPECT_EQ(from_page::IPC_MSG_NO_UPDATES_LEFT.id, 141085);
}

}  // namespace
}  // namespace channel
