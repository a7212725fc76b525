#include "entry/accessories_upgrade.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include "kernel/ui_turn.h"
#include "nothrow_failure.h"
#include "page_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Entry : public PageFixture {
protected:
    ~Entry() override {
        Close();
        m_page.Discard();
    }
    void Create() {
        const kernel::UiTurn turn;
        CreateSetting(m_page.Manager(), m_page.Pump(), m_page.Parent());
    }
    void Close() {
        const kernel::UiTurn turn;
        CloseWnd();
    }
};

// In a process in which nothing has run before.
TEST(EntryOfAFreshProcess, CloseWndBeforeAnyCreateSettingReturnsAtOnce) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto closeFirst = [] {
        CloseWnd();
        std::_Exit(seam::Get().events.empty() ? 0 : 1);
    };
    EXPECT_EXIT(closeFirst(), testing::ExitedWithCode(0), "");
}

TEST_F(Entry, CreateSettingLogsTwiceAndBuildsThePage) {
    Create();
    EXPECT_EQ(Logged()[0], L"[AccessoryLog]init access(CreateSetting)");
    EXPECT_EQ(Logged()[1], L"[AccessoryLog]init access(AccessSetting::CreateSetting)");
    EXPECT_EQ(Logged(4).size(), 3u) << "and the ready message's";
    EXPECT_EQ(m_page.Parent()->GetCount(), 1);
}

TEST_F(Entry, ASecondCloseWndIsHarmless) {
    Create();
    Close();
    Forget();
    Close();
    EXPECT_TRUE(seam::Get().events.empty());
}

TEST_F(Entry, CloseWndLogsNothingAndLeavesThePageToTheHost) {
    Create();
    Forget();
    Close();
    EXPECT_THAT(Logged(), IsEmpty());
    EXPECT_EQ(Count(seam::Kind::kClientDestroyed), 1u);
    EXPECT_EQ(m_page.Parent()->GetCount(), 1);
}

TEST_F(Entry, WithANullArgumentTheReceiversAreWiredAndNothingIsShown) {
    for (int null = 0; null < 3; ++null) {
        Forget();
        CreateSetting(null == 0 ? nullptr : m_page.Manager(), null == 1 ? nullptr : m_page.Pump(),
                      null == 2 ? nullptr : m_page.Parent());
        EXPECT_EQ(Count(seam::Kind::kRegister), 4u);
        EXPECT_THAT(Posted(), IsEmpty());
        EXPECT_EQ(m_page.Parent()->GetCount(), 0);
        Close();
        EXPECT_EQ(Count(seam::Kind::kClientDestroyed), 1u);
    }
}

TEST_F(Entry, AfterCloseWndCreateSettingBuildsAFreshWindow) {
    Create();
    DeliverList({Accessory("X1")});
    Close();
    m_page.Discard();
    Create();
    Forget();
    DeliverList({Accessory("X2")});
    EXPECT_TRUE(Shown(L"X2hor")) << "the first list of the new window";
}

TEST_F(Entry, ASecondCreateSettingLeavesTheFirstWindowAliveAndCloseWndDestroysTheSecond) {
    const auto receiving = [] {
        std::vector<const void*> clients;
        for (const seam::Callback& callback : seam::Get().callbacks[channel::to_page::IPC_MSG_ALL_UPDATE_DATA.id]) {
            clients.push_back(callback.client);
        }
        return clients;
    };
    Create();
    const std::vector<const void*> first = receiving();
    ASSERT_EQ(first.size(), 1u);
    Create();
    EXPECT_EQ(receiving().size(), 2u);
    Close();
    EXPECT_EQ(receiving(), first);
    Forget();
    Close();
    EXPECT_TRUE(seam::Get().events.empty()) << "nobody reaches the first one";
}

TEST_F(Entry, AWindowThatCannotBeAllocatedLeavesOnlyTheTwoLines) {
    {
        const NothrowFailure failure(1);
        Create();
        EXPECT_TRUE(failure.Happened());
    }
    EXPECT_THAT(Logged(), ElementsAre(L"[AccessoryLog]init access(CreateSetting)",
                                      L"[AccessoryLog]init access(AccessSetting::CreateSetting)"));
    EXPECT_EQ(seam::Get().events.size(), 2u);
    Forget();
    Close();
    EXPECT_TRUE(seam::Get().events.empty()) << "the slot is null";
}

TEST_F(Entry, AssignmentCopiesTheOneMemberAndReturnsTheDestination) {
    int thing = 0;
    AccessoriesUpgradeImp a{&thing};
    AccessoriesUpgradeImp b{nullptr};
    EXPECT_EQ(&(b = a), &b);
    EXPECT_EQ(b.value, &thing);
    AccessoriesUpgradeImp& self = a;
    a = self;
    EXPECT_EQ(a.value, &thing);
}

}  // namespace
