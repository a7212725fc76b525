// One tour through a page's life, held against the channel's messages.
#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>

#include "channel/messages.h"
#include "page_window_fixture.h"

namespace {

using testing::UnorderedElementsAreArray;

using Row = std::tuple<int, int, std::string>;  // message, endpoint, payload

std::string PayloadOf(const seam::Event& post) {
    if (post.item.data == nullptr && post.payload.empty()) return "none";
    if (post.payload.find_first_not_of("-0123456789") == std::string::npos) return "number";
    EXPECT_THAT(post.payload, testing::AnyOf(std::string("X1\0", 3), std::string("X2\0", 3)));
    return "device key";
}

std::vector<channel::MessageInfo> Messages(channel::Direction direction) {
    std::vector<channel::MessageInfo> messages;
    std::copy_if(std::begin(channel::kMessages), std::end(channel::kMessages), std::back_inserter(messages),
                 [direction](const channel::MessageInfo& message) { return message.direction == direction; });
    return messages;
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
    for (const auto& message : Messages(channel::Direction::kFromPage)) {
        table.push_back({message.id, message.endpoint, message.payload});
    }
    EXPECT_THAT(posted, UnorderedElementsAreArray(table));
}

TEST_F(MessageTour, RegistersEveryMessageOfTheTableAndNoOther) {
    MakeWindow();
    DeliverList({Accessory("X1")});
    std::vector<int> registered, table;
    for (const seam::Event& event : seam::Get().events) {
        if (event.kind == seam::Kind::kRegister) registered.push_back(event.number);
    }
    for (const auto& message : Messages(channel::Direction::kToPage)) {
        table.push_back(message.id);
        EXPECT_EQ(message.endpoint, seam::Get().clients.front().endpointId) << message.name;
    }
    EXPECT_THAT(registered, UnorderedElementsAreArray(table));
}

TEST_F(MessageTour, UnderstandsEveryMessageThatItIsSent) {
    namespace to_page = channel::to_page;
    MakeWindow();
    EXPECT_TRUE(Deliver(to_page::IPC_MSG_ALL_UPDATE_DATA, {Accessory("X1"), Accessory("X2")}));
    EXPECT_TRUE(m_page.Find(L"X1hor") != nullptr && m_page.Find(L"X2hor") != nullptr);
    EXPECT_TRUE(Deliver(to_page::IPC_MSG_DOWNLOAD_PROCESS, {"X1", 37}));
    EXPECT_EQ(Text(L"X1progress"), L"37%");
    EXPECT_TRUE(Deliver(to_page::IPC_MSG_PKG_FINISH, {"X1"}));
    EXPECT_FALSE(Shown(L"X1hor"));
    EXPECT_TRUE(Deliver(to_page::IPC_MSG_PKG_FAIL, {"X2"}));
    EXPECT_EQ(Text(L"X2progress"), L"Try again");
    EXPECT_EQ(Messages(channel::Direction::kToPage).size(), 4u) << "a message that this test does not send";
}

}  // namespace
