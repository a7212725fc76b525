#include "sleep_inhibitor.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>
#include <string>
#include <vector>

#include "fake_login_service.h"
#include "private_bus.h"

namespace settings_host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// A bus of its own, with a login service on it unless a test takes that away.
class SleepInhibitorTest : public testing::Test {
protected:
    SleepInhibitor MakeInhibitor() {
        return SleepInhibitor("Settings", [this](const std::string& line) { m_told.push_back(line); });
    }

    PrivateBus m_bus;
    std::optional<FakeLoginService> m_service{std::in_place};
    std::vector<std::string> m_told;
};

TEST_F(SleepInhibitorTest, HoldingAsksOnceWithWhatWhoWhyAndMode) {
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.SetReason("Aktualisierung läuft");
    inhibitor.Hold(true);
    EXPECT_TRUE(inhibitor.IsHeld());
    inhibitor.Hold(true);
    ASSERT_THAT(m_service->Calls(), SizeIs(1));
    EXPECT_THAT(m_service->Calls()[0].words,
                ElementsAre("sleep:shutdown", "Settings", "Aktualisierung läuft", "block"));
    EXPECT_FALSE(m_service->IsLetGo(0));
    EXPECT_THAT(m_told, IsEmpty());
}

TEST_F(SleepInhibitorTest, NothingIsAskedBeforeItIsHeld) {
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(false);
    EXPECT_FALSE(inhibitor.IsHeld());
    EXPECT_THAT(m_service->Calls(), IsEmpty());
}

TEST_F(SleepInhibitorTest, LettingGoClosesTheFileThatTheServiceGave) {
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(true);
    inhibitor.Hold(false);
    EXPECT_FALSE(inhibitor.IsHeld());
    EXPECT_TRUE(m_service->WaitUntilLetGo(0));
}

TEST_F(SleepInhibitorTest, TheEndOfTheInhibitorLetsGo) {
    {
        SleepInhibitor inhibitor = MakeInhibitor();
        inhibitor.Hold(true);
    }
    EXPECT_TRUE(m_service->WaitUntilLetGo(0));
}

// Started as libraries start programs, which do not close what they do not know.
TEST_F(SleepInhibitorTest, AProgramStartedMeanwhileDoesNotHoldOn) {
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(true);
    char program[] = "sleep";
    char time[] = "300";
    char* const command[] = {program, time, nullptr};
    pid_t child = 0;
    ASSERT_EQ(posix_spawnp(&child, program, nullptr, nullptr, command, environ), 0);
    inhibitor.Hold(false);
    EXPECT_TRUE(m_service->WaitUntilLetGo(0));
    EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0) << "it has ended meanwhile";
    kill(child, SIGKILL);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

TEST_F(SleepInhibitorTest, ANewReasonIsGivenWhenItIsHeldAgain) {
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.SetReason("first");
    inhibitor.Hold(true);
    inhibitor.SetReason("second");
    inhibitor.Hold(true);
    inhibitor.Hold(false);
    inhibitor.Hold(true);
    ASSERT_THAT(m_service->Calls(), SizeIs(2));
    EXPECT_EQ(m_service->Calls()[0].words.at(2), "first");
    EXPECT_EQ(m_service->Calls()[1].words.at(2), "second");
    EXPECT_TRUE(m_service->WaitUntilLetGo(0));
    EXPECT_FALSE(m_service->IsLetGo(1));
}

TEST_F(SleepInhibitorTest, TheBusIsLeftAlthoughTheInhibitionIsHeld) {
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(true);
    ASSERT_THAT(m_service->Calls(), SizeIs(1));
    EXPECT_TRUE(WaitUntilDisconnected(m_service->Calls()[0].sender));
    EXPECT_FALSE(m_service->IsLetGo(0));
}

TEST_F(SleepInhibitorTest, ARefusalIsToldOnceAndTriedAgainAfterLettingGo) {
    m_service->AnswerWith(FakeLoginService::Answer::Refusal);
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(true);
    EXPECT_FALSE(inhibitor.IsHeld());
    inhibitor.Hold(true);
    EXPECT_THAT(m_service->Calls(), SizeIs(1));
    inhibitor.Hold(false);
    inhibitor.Hold(true);
    EXPECT_THAT(m_service->Calls(), SizeIs(2));
    EXPECT_THAT(m_told, ElementsAre("sleep and shutdown are not inhibited: logind: Not for you."));
}

TEST_F(SleepInhibitorTest, ARefusalAfterAnAgreementIsToldAgain) {
    SleepInhibitor inhibitor = MakeInhibitor();
    for (const auto answer :
         {FakeLoginService::Answer::Refusal, FakeLoginService::Answer::File, FakeLoginService::Answer::Refusal}) {
        m_service->AnswerWith(answer);
        inhibitor.Hold(true);
        EXPECT_EQ(inhibitor.IsHeld(), answer == FakeLoginService::Answer::File);
        inhibitor.Hold(false);
    }
    EXPECT_THAT(m_told, SizeIs(2));
}

TEST_F(SleepInhibitorTest, AServiceThatDoesNotAnswerIsTold) {
    m_service->AnswerWith(FakeLoginService::Answer::Silence);
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(true);
    EXPECT_FALSE(inhibitor.IsHeld());
    EXPECT_THAT(m_service->Calls(), SizeIs(1));
    EXPECT_THAT(m_told, ElementsAre(HasSubstr("logind: ")));
}

TEST_F(SleepInhibitorTest, AnAnswerWithoutAFileIsTold) {
    m_service->AnswerWith(FakeLoginService::Answer::Nothing);
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(true);
    EXPECT_FALSE(inhibitor.IsHeld());
    EXPECT_THAT(m_told, ElementsAre(HasSubstr("logind's answer cannot be read")));
}

TEST_F(SleepInhibitorTest, ABusWithoutTheServiceIsToldOnceAndTheServiceFoundWhenItHasCome) {
    m_service.reset();
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(true);
    EXPECT_FALSE(inhibitor.IsHeld());
    EXPECT_THAT(m_told, ElementsAre(HasSubstr("logind: ")));
    m_service.emplace();
    inhibitor.Hold(false);
    inhibitor.Hold(true);
    EXPECT_TRUE(inhibitor.IsHeld());
}

TEST_F(SleepInhibitorTest, NoBusIsToldOnce) {
    m_service.reset();
    UseBusAt(m_bus.Folder() / "nothing");
    SleepInhibitor inhibitor = MakeInhibitor();
    for (int i = 0; i < 2; ++i) {
        inhibitor.Hold(true);
        EXPECT_FALSE(inhibitor.IsHeld());
        inhibitor.Hold(false);
    }
    EXPECT_THAT(m_told, ElementsAre(HasSubstr("the system bus cannot be reached: No such file or directory")));
}

TEST_F(SleepInhibitorTest, ABusThatDoesNotGreetIsTold) {
    m_service.reset();
    const DeafBus deaf(m_bus.Folder() / "deaf");
    SleepInhibitor inhibitor = MakeInhibitor();
    inhibitor.Hold(true);
    EXPECT_FALSE(inhibitor.IsHeld());
    EXPECT_THAT(m_told, ElementsAre(HasSubstr("the system bus does not answer")));
}

TEST_F(SleepInhibitorTest, WithoutALogARefusalIsNoFailure) {
    m_service->AnswerWith(FakeLoginService::Answer::Refusal);
    SleepInhibitor inhibitor("Settings");
    inhibitor.Hold(true);
    EXPECT_FALSE(inhibitor.IsHeld());
}

}  // namespace
}  // namespace settings_host
