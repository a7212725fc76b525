// What the host takes from the desktop around it, and gives to it: the locale, and the wish to stay awake.

#include "fake_login_service.h"
#include "page_e2e_test.h"
#include "private_bus.h"

namespace e2e {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class HostSurroundingsTest : public PageE2ETest {};

TEST_F(HostSurroundingsTest, TheLanguageFollowsTheLocale) {
    AddAccessory("pen");
    StartService();
    const auto host = StartHost({}, {{"LC_ALL", "de_AT.UTF-8"}});
    ASSERT_TRUE(host->Play(WaitForRows(1, "pen") + "wait text penupdateBtn \"Aktualisieren\""));
    host->End();
}

TEST_F(HostSurroundingsTest, ANamedLanguageWinsOverTheLocale) {
    AddAccessory("pen");
    StartService();
    const auto host = StartHost({"--language", "en-US"}, {{"LC_ALL", "de_AT.UTF-8"}});
    ASSERT_TRUE(host->Play(WaitForRows(1, "pen") + "wait text penupdateBtn Update"));
    host->End();
}

TEST_F(HostSurroundingsTest, TheComputerStaysAwakeWhileAnUpdateRuns) {
    settings_host::PrivateBus bus;
    settings_host::FakeLoginService login;
    AddAccessory("pen");
    StartService({"--rate", kSlowRate});
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(WaitForRows(1, "pen")));
    EXPECT_THAT(login.Calls(), SizeIs(0));
    ASSERT_TRUE(host->Play("click penupdateBtn\nwait shown runningCount"));
    ASSERT_THAT(login.Calls(), SizeIs(1));
    EXPECT_THAT(login.Calls()[0].words,
                ElementsAre("sleep:shutdown", "Settings", "Accessory updates are running", "block"));
    EXPECT_FALSE(login.IsLetGo(0));
    ASSERT_TRUE(host->Play("click penstopBtn\nwait hidden runningCount"));
    EXPECT_TRUE(login.WaitUntilLetGo(0));
    ASSERT_TRUE(host->Play("click penstopBtn\nwait shown runningCount"));
    ASSERT_THAT(login.Calls(), SizeIs(2));
    host->End();
    EXPECT_TRUE(login.WaitUntilLetGo(1));
}

}  // namespace
}  // namespace e2e
