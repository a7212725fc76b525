#include <gmock/gmock.h>

#include "ansi_page.h"
#include "channel/messages.h"
#include "page_window_fixture.h"

namespace {

using DuiLib::PageInspector;
using testing::ElementsAre;
using testing::IsEmpty;

class MessageRouting : public PageWindowFixture {
protected:
    MessageRouting() { MakeWindow(); }
};

// Deliberate: nothing remembers that the row has ended.
TEST_F(MessageRouting, ASecondEndOfTheSameRowCountsDownOnceMore) {
    DeliverList({Accessory("X1"), Accessory("X2")});
    DeliverFinish("X1");
    EXPECT_EQ(PageInspector::FirmwareNum(*window), 1);
    const int height = PageInspector::TotalHeight(*window);
    DeliverFinish("X1");
    EXPECT_EQ(PageInspector::FirmwareNum(*window), 0);
    EXPECT_EQ(PageInspector::TotalHeight(*window), height - 24);
    EXPECT_TRUE(Shown(L"X2hor"));
}

TEST_F(MessageRouting, ASeparatorThatIsNullKeepsTheEndFromTheRow) {
    DeliverList({Accessory("X1"), Accessory("X2")});
    PageInspector::Lines(*window)["X1"] = nullptr;
    Forget();
    DeliverFinish("X1");
    EXPECT_TRUE(Shown(L"X1hor"));
    EXPECT_THAT(Logged(), IsEmpty());
}

struct ForeignKey {
    unsigned page;
    const char* key;
    const wchar_t* wide;
};

TEST_F(MessageRouting, AKeyOfAnyAnsiPageNamesTheControlsAndReachesItsRow) {
    const ForeignKey keys[] = {
        {kernel::kCodePageUtf8, "\xE7\xAC\x94-\xC3\xA9", L"\u7b14-\u00e9"},
        {1252, "caf\xE9\x80", L"caf\u00e9\u20ac"},
        {936, "\xB1\xCA-1", L"\u7b14-1"},
    };
    int tried = 0;
    for (const ForeignKey& c : keys) {
        if (!AnsiPage::CanBe(c.page)) continue;
        ++tried;
        const AnsiPage page(c.page);
        const std::wstring wide = c.wide;
        m_page.Discard();
        MakeWindow();
        DeliverList({Accessory(c.key), Accessory("X2")});
        DeliverProgress(c.key, 37);
        EXPECT_EQ(Text(wide + L"progress"), L"37%") << c.page;
        DeliverFail(c.key);
        EXPECT_EQ(Text(wide + L"progress"), L"Try again") << c.page;
        Forget();
        DeliverFinish(c.key);
        EXPECT_FALSE(Shown(wide + L"hor")) << c.page;
        EXPECT_FALSE(Shown(wide + L"_0")) << c.page;
        EXPECT_THAT(Posted(), testing::Contains("B20018 B20034 " + std::string(c.key) + "\\0"));
        EXPECT_TRUE(Shown(L"X2hor"));
    }
    EXPECT_EQ(tried, AnsiPage::CanBe(936) && AnsiPage::CanBe(1252) ? 3 : 1);
}

TEST_F(MessageRouting, ARawPayloadIsReadUpToItsZeroWhateverItsLengthSays) {
    DeliverList({Accessory("X1"), Accessory("X")});
    char key[] = "X1";
    TagIPCMessageItem item;
    item.data = key;
    const kernel::UiTurn turn;
    for (const std::int32_t dataLen : {0, 1, -1}) {
        item.dataLen = dataLen;
        DeliverProgress("X1", 10);
        window->RecPkgFail(item);
        EXPECT_EQ(Text(L"X1progress"), L"Try again") << dataLen;
    }
    item.dataLen = 1;
    window->RecPkgFinish(item);
    EXPECT_FALSE(Shown(L"X1hor"));
    EXPECT_TRUE(Shown(L"Xhor")) << "the key whose length was given";
}

TEST_F(MessageRouting, ARawMessageWithoutPayloadIsTheEmptyKey) {
    DeliverList({Accessory(""), Accessory("X1")});
    seam::Get().Deliver(channel::to_page::IPC_MSG_PKG_FAIL.id, "");
    EXPECT_EQ(Text(L"progress"), L"Try again") << "the controls of the empty key have their plain names";
    seam::Get().Deliver(channel::to_page::IPC_MSG_PKG_FINISH.id, "");
    EXPECT_FALSE(Shown(L"_0"));
}

TEST_F(MessageRouting, WithoutAPaintManagerTheEndDoesNothing) {
    DuiLib::AccessoriesUpdateWnd bare;
    TagIPCMessageItem item;
    Forget();
    bare.RecPkgFinish(item);
    EXPECT_TRUE(seam::Get().events.empty());
}

TEST_F(MessageRouting, AnAbsurdListLeavesTheCallbackAsAnException) {
    using namespace std::string_literals;
    Forget();
    EXPECT_ANY_THROW(seam::Get().Deliver(channel::to_page::IPC_MSG_ALL_UPDATE_DATA.id, "\x01\0\0\0\xFF\xFF\xFF\xFF"s));
    EXPECT_TRUE(seam::Get().events.empty());
}

}  // namespace
