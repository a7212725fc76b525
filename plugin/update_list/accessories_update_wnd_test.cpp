#include <gmock/gmock.h>

#include "channel/messages.h"
#include "nothrow_failure.h"
#include "page_window_fixture.h"
#include "vtable_slot.h"

namespace {

using DuiLib::AccessoriesUpdateWnd;
using DuiLib::PageInspector;
using testing::ElementsAre;
using testing::IsEmpty;

class UpdateWindow : public PageWindowFixture {
protected:
    static std::wstring AddressOf(const AccessoriesUpdateWnd& window) {
        return std::to_wstring(reinterpret_cast<std::uintptr_t>(&window));
    }
    static std::vector<int> Registered() {
        std::vector<int> ids;
        for (const seam::Event& event : seam::Get().events) {
            if (event.kind == seam::Kind::kRegister) ids.push_back(event.number);
        }
        return ids;
    }
};

TEST_F(UpdateWindow, RegistersFourMessagesAndPostsReadyOnceAfterThePageWasAdded) {
    int addedAtPost = 0;
    seam::Get().onPost = [&](int) { addedAtPost = m_page.Parent()->GetCount(); };
    MakeWindow();
    seam::Get().onPost = {};
    EXPECT_EQ(addedAtPost, 1);
    EXPECT_THAT(Registered(), ElementsAre(11665447, 11665443, 11665444, 11665446));
    EXPECT_THAT(Posted(), ElementsAre("B20001 B20027"));
    EXPECT_EQ(m_page.Parent()->GetCount(), 1);
}

TEST_F(UpdateWindow, WithANullArgumentTheRegistrationsAreThereAndNothingIsPosted) {
    for (int null = 0; null < 3; ++null) {
        Forget();
        AccessoriesUpdateWnd fresh;
        fresh.InitItemLayout(null == 0 ? nullptr : m_page.Manager(), null == 1 ? nullptr : m_page.Pump(),
                             null == 2 ? nullptr : m_page.Parent());
        EXPECT_EQ(Registered().size(), 4u);
        EXPECT_THAT(Posted(), IsEmpty());
        EXPECT_EQ(m_page.Parent()->GetCount(), 0);
        EXPECT_EQ(Logged().size(), 1u);
    }
}

TEST_F(UpdateWindow, FailedAllocationsOfTheIpcSideAreLoggedAndEndTheWiring) {
    const FailedAllocation cases[] = {
        {1, L"InitIpcCallBack new objIPCClientPtr failed,  objIPCClientPtr is nullptr."},
        {2, L"InitIpcCallBack new ipcClient failed, ipcClient is nullptr."},
        {3, L"InitIpcCallBack new ipcReciever failed, ipcReciever is nullptr."},
    };
    for (const FailedAllocation& c : cases) {
        ExpectFailureLine(c.line);
        Forget();
        m_page.Discard();
        const NothrowFailure failure(c.nth);
        MakeWindow();
        EXPECT_TRUE(failure.Happened());
        EXPECT_EQ(Logged(4).front(), std::wstring(L"[AccessoryLog]") + c.line +
                                         L"(DuiLib::AccessoriesUpdateWnd::ResigterAccessMessageCallBacks)");
        EXPECT_THAT(Registered(), IsEmpty());
        EXPECT_EQ(Posted().size(), c.nth == 1 ? 0u : 1u) << "posts go out through a client without registry";
        EXPECT_EQ(Logged(4).size(), c.nth == 1 ? 1u : 2u);
    }
}

TEST_F(UpdateWindow, AReceiverThatCannotBeMadeLeavesTheOthers) {
    const NothrowFailure failure(4);
    MakeWindow();
    EXPECT_TRUE(failure.Happened());
    EXPECT_THAT(Registered(), ElementsAre(11665443, 11665444, 11665446));
}

TEST_F(UpdateWindow, AMissingPageLayoutIsLoggedAndSendsNoReadyMessage) {
    UseLayouts({{}, false, true});
    ExpectFailureLine(L"update item fail to create control");
    DuiLib::SetDiagnosticSink([](const std::string&) {});
    MakeWindow();
    DuiLib::SetDiagnosticSink({});
    EXPECT_THAT(Logged(4), ElementsAre(L"[AccessoryLog]update item fail to create control"
                                       L"(DuiLib::AccessoriesUpdateWnd::InitItemLayout)"));
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_FALSE(m_page.Pump()->RemoveVirtualWnd(AddressOf(*window))) << "not registered with the host";
    Forget();
    DeliverList({Accessory("X1")});
    EXPECT_THAT(Logged(), ElementsAre(L"[AccessoryLog]RecAllUpdateData size : 1"
                                      L"(DuiLib::AccessoriesUpdateWnd::RecAllUpdateData)"));
    EXPECT_EQ(m_page.Find(L"X1hor"), nullptr);
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(UpdateWindow, AClientThatThrowsCountsAsOneThatCannotBeMade) {
    ExpectFailureLine(L"objIPCClientPtr is nullptr");
    seam::Get().clientThrows = true;
    MakeWindow();
    EXPECT_THAT(Registered(), IsEmpty());
    EXPECT_THAT(Posted(), IsEmpty());
    EXPECT_EQ(Logged(4).size(), 1u);
    EXPECT_EQ(m_page.Parent()->GetCount(), 1) << "the page is there";
    std::vector<AccessoryVersionDataInfo> list = {Accessory("X1")};
    window->RecAllUpdateData(list);
    EXPECT_TRUE(Shown(L"X1hor")) << "and its rows, which have no client either";
    Click(L"X1updateBtn");
    EXPECT_THAT(Posted(), IsEmpty());
}

TEST_F(UpdateWindow, ASecondWiringReplacesTheRegistryAndDropsTheClient) {
    MakeWindow();
    const std::unique_ptr<IPCMessageClient> dropped(PageInspector::Client(*window));
    Forget();
    window->ResigterAccessMessageCallBacks();
    EXPECT_NE(PageInspector::Client(*window), dropped.get());
    EXPECT_EQ(Count(seam::Kind::kUnregister), 2u) << "the earlier registry's receivers";
    EXPECT_EQ(Count(seam::Kind::kClientDestroyed), 0u);
    EXPECT_THAT(Registered(), ElementsAre(11665447, 11665443, 11665444, 11665446));
    EXPECT_EQ(seam::Get().callbacks[channel::to_page::IPC_MSG_ALL_UPDATE_DATA.id].size(), 1u);
    EXPECT_EQ(seam::Get().callbacks[channel::to_page::IPC_MSG_DOWNLOAD_PROCESS.id].size(), 1u);
}

TEST_F(UpdateWindow, BothWindowsHaveTheirOperationsInTheOrderOfTheirSlots) {
    EXPECT_EQ(Slot(&AccessoriesUpdateWnd::GetMessageMap), 0u);
    EXPECT_EQ(Slot(&AccessoriesUpdateWnd::OnClick), 1u);
    EXPECT_EQ(Slot(&DuiLib::AccessoriesFirwareWnd::GetMessageMap), 0u);
    EXPECT_EQ(Slot(&DuiLib::AccessoriesFirwareWnd::OnClick), 1u);
}

TEST_F(UpdateWindow, ASecondSetUpStartsAtNoHeightAndNoIndexAndWithoutArgumentsUnderNoName) {
    MakeWindow();
    DeliverList({Accessory("X1"), Accessory("X2")});
    ASSERT_EQ(PageInspector::TotalHeight(*window), 2 * 77);
    ASSERT_EQ(PageInspector::BuildIndex(*window), 1);
    const std::unique_ptr<IPCMessageClient> dropped(PageInspector::Client(*window));
    window->InitItemLayout(nullptr, nullptr, nullptr);
    EXPECT_EQ(PageInspector::TotalHeight(*window), 0);
    EXPECT_EQ(PageInspector::BuildIndex(*window), 0);
    EXPECT_EQ(PageInspector::VirtualWndName(*window), L"");
}

TEST_F(UpdateWindow, WhatHappensToThePagesControlsIsToldToWhomItsNameBelongs) {
    struct Recorder : DuiLib::CNotifyPump {
        void OnClick(DuiLib::TNotifyUI& message) override { senders.push_back(message.sender->GetName().Str()); }
        const DuiLib::DUI_MSGMAP* GetMessageMap() const override {
            static constexpr DuiLib::DUI_MSGMAP_ENTRY kEntries[] = {
                {DuiLib::kNotifyClick, nullptr, &CNotifyPump::OnClick}, {nullptr, nullptr, nullptr}};
            static const DuiLib::DUI_MSGMAP kMap{&s_messageMap, kEntries};
            return &kMap;
        }
        std::vector<std::wstring> senders;
    };
    MakeWindow();
    Recorder recorder;
    ASSERT_TRUE(m_page.Pump()->AddVirtualWnd(AddressOf(*window), &recorder)) << "takes the window's place";
    m_page.Notify(L"topName");
    EXPECT_THAT(recorder.senders, ElementsAre(L"topName"));
    m_page.Discard();
}

TEST_F(UpdateWindow, TwoWindowsHaveTheirAddressesAsNames) {
    MakeWindow();
    const auto first = std::move(window);
    MakeWindow();
    EXPECT_NE(PageInspector::VirtualWndName(*first), PageInspector::VirtualWndName(*window));
    EXPECT_EQ(PageInspector::VirtualWndName(*window), AddressOf(*window));
}

TEST_F(UpdateWindow, AfterItsDestructionNoCallbackIsRegisteredAnyMore) {
    MakeWindow();
    const std::wstring name = AddressOf(*window);
    Forget();
    window.reset();
    for (const auto& [msgId, callbacks] : seam::Get().callbacks) EXPECT_TRUE(callbacks.empty()) << msgId;
    std::vector<seam::Kind> kinds;
    for (const seam::Event& event : seam::Get().events) kinds.push_back(event.kind);
    EXPECT_THAT(kinds, ElementsAre(seam::Kind::kUnregister, seam::Kind::kUnregister, seam::Kind::kUnregisterAll,
                                   seam::Kind::kClientDestroyed));
    EXPECT_EQ(m_page.Parent()->GetCount(), 1) << "the host keeps the page";
    EXPECT_TRUE(m_page.Pump()->RemoveVirtualWnd(name)) << "and the registration";
}

TEST_F(UpdateWindow, AClickOnThePageItselfDoesNothing) {
    MakeWindow();
    Forget();
    m_page.Notify(L"topName");
    EXPECT_TRUE(seam::Get().events.empty());
}

}  // namespace
