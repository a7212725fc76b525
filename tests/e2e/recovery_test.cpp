// Either side may end and come back.

#include <signal.h>

#include "page_e2e_test.h"

namespace e2e {
namespace {

const std::string kClickPen = WaitForRows(1, "pen") + "click penupdateBtn\n";
const std::string kPenEnds = "wait text penprogress \"Up to date\" within 60\nwait nothing-left\nwait running 0";

class RecoveryTest : public PageE2ETest {
protected:
    // Starts the pen's update on a slow service, with a new host, and comes back in the middle of the download.
    [[nodiscard]] std::unique_ptr<Host> HostInMidDownload() {
        AddAccessory("pen");
        StartService({"--rate", kSlowRate});
        auto host = StartHost();
        EXPECT_TRUE(host->Play(kClickPen + "wait percent penprogress 10"));
        return host;
    }
};

TEST_F(RecoveryTest, AServiceKilledInMidDownloadGoesOnFromItsPartFileWhileThePageStays) {
    const auto host = HostInMidDownload();
    KillService();
    const auto part = std::filesystem::file_size(Part("pen"));
    EXPECT_GE(part, kSize / 10);
    EXPECT_LT(part, kSize);
    ASSERT_TRUE(host->Play("wait disconnected"));

    StartService();
    ASSERT_TRUE(host->Play(kPenEnds));
    EXPECT_THAT(ServiceLog(), HasSubstr("pen: goes on: it was downloading"));
    EXPECT_THAT(ServiceLog(), HasSubstr("pen: started, goes on from byte " + std::to_string(part)));
    EXPECT_EQ(ReadFile(Arrived("pen")), PackageContent("pen"));
    host->End();
}

TEST_F(RecoveryTest, AHostThatWasThereBeforeTheServiceGetsItsList) {
    AddAccessory("pen");
    const auto host = StartHost();
    ASSERT_TRUE(host->Program().Errors().WaitFor("the pipe cannot be reached"));
    EXPECT_THAT(host->Transcript(), Not(HasSubstr("Firmware version")));
    StartService();
    ASSERT_TRUE(host->Play("wait shown penupdateBtn within 30"));
    host->End();
    EXPECT_THAT(host->Transcript(), HasSubstr("Drawing Pen | Firmware version 2.0 | <Update>"));
}

TEST_F(RecoveryTest, APageClosedInMidUpdateAndOpenedAgainListsItAndFollowsItToItsEnd) {
    const auto host = HostInMidDownload();
    ASSERT_TRUE(host->Play("close\nopen\n" + kClickPen));
    ASSERT_TRUE(host->Play(kPenEnds));
    EXPECT_THAT(ServiceLog(), HasSubstr("pen: runs already"));
    EXPECT_EQ(ReadFile(Arrived("pen")), PackageContent("pen"));
    host->End();
}

TEST_F(RecoveryTest, ASecondHostAfterTheFirstFollowsTheSameUpdate) {
    HostInMidDownload()->End();
    const auto second = StartHost();
    ASSERT_TRUE(second->Play(kClickPen + "wait percent penprogress 11"));
    ASSERT_TRUE(second->Play(kPenEnds));
    second->End();
    EXPECT_EQ(ReadFile(Arrived("pen")), PackageContent("pen"));
}

TEST_F(RecoveryTest, AHostThatEndsWhileItsPageIsOpenLeavesTheServiceUndisturbed) {
    AddAccessory("pen");
    StartService();
    for (int i = 0; i < 3; ++i) {
        const auto host = StartHost();
        ASSERT_TRUE(host->Play("wait shown penupdateBtn"));
        host->Program().Kill();
        EXPECT_EQ(host->Program().WaitForEnd(), -SIGKILL);
    }
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(kClickPen));
    ASSERT_TRUE(host->Play(kPenEnds));
    host->End();
}

// The row waits with its finished text for longer than the test may take, until the page is being left.
TEST_F(RecoveryTest, APageClosedWhileARowShowsItsEndNeitherHangsNorCrashes) {
    AddAccessory("pen");
    StartService();
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(WaitForRows(1, "pen") + "waits 1000000\n"
                                                   "click penupdateBtn\n"
                                                   "wait text penprogress \"Up to date\" within 60\n"
                                                   "say now\n"
                                                   "close waits 1\n"
                                                   "say closed\n"
                                                   "open\n"
                                                   "wait connected"));
    ASSERT_TRUE(host->Program().Output().WaitFor("host: no update is left"));
    host->End();
    const std::string transcript = host->Transcript();
    EXPECT_LT(transcript.find("# now"), transcript.find("host: no update is left")) << transcript;
}

}  // namespace
}  // namespace e2e
