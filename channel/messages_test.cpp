// The message table, against itself and against the document that strangers write peers by.
#include "ipc/message_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <vector>

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

std::string Word(IpcPayload payload) {
    switch (payload) {
        case IpcPayload::kNone:
            return "none";
        case IpcPayload::kDeviceKey:
            return "device key";
        case IpcPayload::kDecimal:
            return "number";
        case IpcPayload::kProgress:
            return "progress";
        case IpcPayload::kAccessoryList:
            return "list";
    }
    return "";
}

TEST(MessageTable, HasEachIdOnceADirection) {
    for (const IpcMessageDescriptor& a : kIpcMessages) {
        for (const IpcMessageDescriptor& b : kIpcMessages) {
            EXPECT_TRUE(&a == &b || a.msgId != b.msgId || a.direction != b.direction) << a.name;
        }
    }
    EXPECT_EQ(std::size(kIpcMessages), 7u + 4u);
}

// | id | name | to | meaning | payload |
TEST(MessageTable, StandsInTheProtocolDocument) {
    const auto rows = DocumentedRows();
    for (const IpcMessageDescriptor& message : kIpcMessages) {
        int found = 0;
        for (const auto& row : rows) {
            found += row.size() == 5 && row[0] == Hex(message.msgId) &&
                     row[1] == "`" + std::string(message.name) + "`" && row[2] == Hex(message.endpoint) &&
                     row[4].starts_with(Word(message.payload));
        }
        EXPECT_EQ(found, 1) << message.name << " to " << Hex(message.endpoint);
    }
}

}  // namespace
