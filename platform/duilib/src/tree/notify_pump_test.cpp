#include "duilib/notify_pump.h"

#include "support/toolkit/toolkit_test.h"

namespace DuiLib {

namespace {

// Says which of its maps' entries got a message.
class BasePump : public CNotifyPump {
public:
    const DUI_MSGMAP* GetMessageMap() const override { return &s_map; }
    void OnBase(TNotifyUI&) { heard += "base "; }

    std::string heard;

protected:
    static const DUI_MSGMAP_ENTRY s_entries[];
    static const DUI_MSGMAP s_map;
};

const DUI_MSGMAP_ENTRY BasePump::s_entries[] = {
    {L"click", L"", static_cast<void (CNotifyPump::*)(TNotifyUI&)>(&BasePump::OnBase)},
    {L"hover", nullptr, static_cast<void (CNotifyPump::*)(TNotifyUI&)>(&BasePump::OnBase)},
    {nullptr, nullptr, nullptr},
};
const DUI_MSGMAP BasePump::s_map = {&CNotifyPump::s_messageMap, BasePump::s_entries};

class DerivedPump : public BasePump {
public:
    const DUI_MSGMAP* GetMessageMap() const override { return &s_derivedMap; }
    void OnGo(TNotifyUI&) { heard += "go "; }
    void OnClick(TNotifyUI&) override { heard += "click "; }

private:
    static const DUI_MSGMAP_ENTRY s_derivedEntries[];
    static const DUI_MSGMAP s_derivedMap;
};

const DUI_MSGMAP_ENTRY DerivedPump::s_derivedEntries[] = {
    {L"click", L"go", static_cast<void (CNotifyPump::*)(TNotifyUI&)>(&DerivedPump::OnGo)},
    {L"press", nullptr, &CNotifyPump::OnClick},
    {nullptr, nullptr, nullptr},
};
const DUI_MSGMAP DerivedPump::s_derivedMap = {&BasePump::s_map, DerivedPump::s_derivedEntries};

}  // namespace

TEST(NotifyPump, TheOwnMapComesBeforeTheBasesMap) {
    CControlUI go;
    go.SetName(L"go");
    CControlUI other;
    struct {
        const wchar_t* type;
        CControlUI* sender;
        const char* heard;
    } const table[] = {
        {L"click", &go, "go "},   {L"click", &other, "base "}, {L"click", nullptr, "base "},
        {L"hover", &go, "base "}, {L"press", &go, "click "},   {L"nothing", &go, ""},
        {L"", &go, ""},
    };
    for (const auto& row : table) {
        DerivedPump pump;
        TNotifyUI message{row.type, row.sender, {}, {}};
        pump.NotifyPump(message);
        EXPECT_EQ(pump.heard, row.heard) << ::testing::PrintToString(row.type);
    }
}

TEST(NotifyPump, APlainPumpHearsNothing) {
    CNotifyPump pump;
    TNotifyUI message{L"click", nullptr, {}, {}};
    pump.NotifyPump(message);
    pump.OnClick(message);
    EXPECT_EQ(pump.GetMessageMap()->base, nullptr);
    EXPECT_EQ(pump.GetMessageMap()->entries->handler, nullptr);
}

class VirtualWindows : public testing::Test {
protected:
    void PressInPanel() {
        TNotifyUI message{L"press", nullptr, L"panel", {}};
        page.NotifyPump(message);
    }

    DerivedPump page, panel;
};

TEST_F(VirtualWindows, AMessageGoesToTheVirtualWindowThatItNames) {
    EXPECT_TRUE(page.AddVirtualWnd(L"panel", &panel));
    PressInPanel();
    EXPECT_EQ(panel.heard, "click ");
    EXPECT_EQ(page.heard, "");
}

TEST_F(VirtualWindows, AMessageForAnUnknownVirtualWindowStaysInThePage) {
    PressInPanel();
    EXPECT_EQ(page.heard, "click ");
}

TEST_F(VirtualWindows, AVirtualWindowThatIsRemovedHearsNothingMore) {
    page.AddVirtualWnd(L"panel", &panel);
    EXPECT_TRUE(page.RemoveVirtualWnd(L"panel"));
    EXPECT_FALSE(page.RemoveVirtualWnd(L"panel"));
    PressInPanel();
    EXPECT_EQ(panel.heard, "");
    EXPECT_EQ(page.heard, "click ");
}

TEST_F(VirtualWindows, ANameThatIsThereAlreadyIsTakenOver) {
    DerivedPump second;
    page.AddVirtualWnd(L"panel", &panel);
    EXPECT_TRUE(page.AddVirtualWnd(L"panel", &second));
    PressInPanel();
    EXPECT_EQ(panel.heard, "");
    EXPECT_EQ(second.heard, "click ");
}

TEST(NotifyPump, EmptyNamesAndNullPumpsAreRefused) {
    CNotifyPump page;
    CNotifyPump panel;
    EXPECT_FALSE(page.AddVirtualWnd(L"", &panel));
    EXPECT_FALSE(page.AddVirtualWnd(L"panel", nullptr));
}

}  // namespace DuiLib
