// One tour through a page's life, held against the table of messages.
#include <gmock/gmock.h>

#include <algorithm>
#include <compare>
#include <functional>
#include <set>

#include "ipc/message_table.h"
#include "ipc/record_codec.h"
#include "page_window_fixture.h"

namespace {

using testing::UnorderedElementsAreArray;

struct Row {
    std::int32_t msgId;
    std::int32_t endpoint;
    IpcPayload payload;

    auto operator<=>(const Row&) const = default;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << std::hex << row.msgId << " to " << row.endpoint << ", payload " << static_cast<int>(row.payload);
}

std::vector<IpcMessageDescriptor> Messages(IpcDirection direction) {
    std::vector<IpcMessageDescriptor> messages;
    for (const IpcMessageDescriptor& message : kIpcMessages) {
        if (message.direction == direction) messages.push_back(message);
    }
    return messages;
}

IpcPayload PayloadOf(const seam::Event& post) {
    if (post.item.data == nullptr && post.payload.empty()) return IpcPayload::kNone;
    if (post.payload.find_first_not_of("-0123456789") == std::string::npos) return IpcPayload::kDecimal;
    EXPECT_THAT(post.payload, testing::AnyOf(std::string("X1\0", 3), std::string("X2\0", 3)));
    return IpcPayload::kDeviceKey;
}

template <class Record>
std::string Encoded(const Record& record) {
    TagIPCMessageItem item;
    IPCDataIO writer(&item, 64, false, false);
    WriteRecord(writer, record);
    return {item.data, writer.Position()};
}

// What the service would send of that kind: rows X1 and X2, 37 percent, or the key alone.
std::string Example(IpcPayload payload, const std::string& key) {
    switch (payload) {
        case IpcPayload::kNone:
            return "";
        case IpcPayload::kDeviceKey:
            return key + '\0';
        case IpcPayload::kDecimal:
            return "37";
        case IpcPayload::kProgress:
            return Encoded(PkgDownloadProcess{key, 37});
        case IpcPayload::kAccessoryList:
            return Encoded(std::vector<AccessoryVersionDataInfo>{Accessory("X1"), Accessory("X2")});
    }
    return "";
}

class MessageTour : public PageWindowFixture {};

TEST_F(MessageTour, PostsEveryMessageOfTheTableAndNoOther) {
    MakeWindow();
    DeliverList({Accessory("X1"), Accessory("X2")});
    Click(L"X1updateBtn");
    Click(L"X1stopBtn");
    DeliverFinish("X1");
    DeliverFinish("X2");

    std::set<Row> posted;
    for (const seam::Event& event : seam::Get().events) {
        if (event.kind == seam::Kind::kPost) posted.insert({event.item.msgId, event.item.destId, PayloadOf(event)});
    }
    std::vector<Row> table;
    for (const IpcMessageDescriptor& m : Messages(IpcDirection::kSent))
        table.push_back({m.msgId, m.endpoint, m.payload});
    EXPECT_THAT(posted, UnorderedElementsAreArray(table));
}

TEST_F(MessageTour, RegistersEveryMessageOfTheTableAndNoOther) {
    MakeWindow();
    DeliverList({Accessory("X1")});
    std::vector<int> registered, table;
    for (const seam::Event& event : seam::Get().events) {
        if (event.kind == seam::Kind::kRegister) registered.push_back(event.number);
    }
    for (const IpcMessageDescriptor& message : Messages(IpcDirection::kReceived)) {
        table.push_back(message.msgId);
        EXPECT_EQ(message.endpoint, seam::Get().clients.front().endpointId) << message.name;
    }
    EXPECT_THAT(registered, UnorderedElementsAreArray(table));
}

TEST_F(MessageTour, UnderstandsEveryReceivedMessageInTheFormThatTheTableNames) {
    const struct {
        std::int32_t msgId;
        const char* key;
        std::function<bool()> took;
    } effects[] = {
        {IPC_MSG_ALL_UPDATE_DATA, "", [&] { return m_page.Find(L"X1hor") && m_page.Find(L"X2hor"); }},
        {IPC_MSG_DOWNLOAD_PROCESS, "X1", [&] { return Text(L"X1progress") == L"37%"; }},
        {IPC_MSG_PKG_FINISH, "X1", [&] { return !Shown(L"X1hor"); }},
        {IPC_MSG_PKG_FAIL, "X2", [&] { return Text(L"X2progress") == L"Try again"; }},
    };
    MakeWindow();
    const auto messages = Messages(IpcDirection::kReceived);
    for (const auto& effect : effects) {
        const auto message = std::find_if(messages.begin(), messages.end(),
                                          [&](const IpcMessageDescriptor& m) { return m.msgId == effect.msgId; });
        ASSERT_NE(message, messages.end());
        const kernel::UiTurn turn;
        EXPECT_TRUE(seam::Get().Deliver(message->msgId, Example(message->payload, effect.key)));
        EXPECT_TRUE(effect.took()) << message->name;
    }
    EXPECT_EQ(std::size(effects), messages.size());
}

}  // namespace
