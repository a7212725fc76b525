// Updates, and what goes wrong with them.

#include "channel/messages.h"
#include "page_e2e_test.h"

namespace e2e {
namespace {

const std::string kClickPen = WaitForRows(1, "pen") + "click penupdateBtn\n";

class UpdatesTest : public PageE2ETest {
protected:
    // The pen's update, started by a click, fails; the log says why.
    void FailOnce(Host& host, const std::string& reason) {
        ASSERT_TRUE(host.Play(kClickPen + "wait text penprogress \"Try again\"\n"
                                          "wait tooltip penstopBtn \"Try again\"\n"
                                          "wait running 0"));
        EXPECT_TRUE(ServiceLogs("pen: failed: ")) << ServiceLog();
        EXPECT_THAT(ServiceLog(), HasSubstr(reason));
    }

    // Another try succeeds.
    void TryAgain(Host& host) {
        ASSERT_TRUE(host.Play("click penstopBtn\nwait text penprogress \"Up to date\"\nwait nothing-left"));
        EXPECT_EQ(ReadFile(Arrived("pen")), PackageContent("pen"));
        host.End();
    }
};

TEST_F(UpdatesTest, SeveralRunAtOnce) {
    const std::vector<std::string> keys = {"pen", "dock", "mouse"};
    for (const std::string& key : keys) AddAccessory(key);
    StartService({"--rate", kSlowRate});
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(WaitForRows(3, "mouse")));
    for (const std::string& key : keys) ASSERT_TRUE(host->Play("click " + key + "updateBtn"));
    ASSERT_TRUE(host->Play("wait running 3"));
    for (const std::string& key : keys) ASSERT_TRUE(host->Play("wait percent " + key + "progress 5"));
    for (const std::string& key : keys) ASSERT_TRUE(host->Play("wait hidden " + key + "hor within 60"));
    ASSERT_TRUE(host->Play("wait nothing-left\nwait running 0"));
    for (const std::string& key : keys) EXPECT_EQ(ReadFile(Arrived(key)), PackageContent(key));
    host->End();
}

TEST_F(UpdatesTest, AnInstallerThatFailsIsToldWithItsReasonAndCanBeTriedAgain) {
    AddAccessory("pen", kSize, "test -e repaired || exit 3");
    StartService();
    const auto host = StartHost();
    FailOnce(*host, "pen: failed: installer: exit status 3");
    WriteFile(m_folder / "repaired", "");
    TryAgain(*host);
}

TEST_F(UpdatesTest, ADamagedPackageIsToldAndFetchedAnewOnceItIsRepaired) {
    AddAccessory("pen");
    std::string damaged = PackageContent("pen");
    damaged[kSize / 2] ^= 1;
    WriteFile(PackageSource("pen"), damaged);
    StartService();
    const auto host = StartHost();
    FailOnce(*host, "pen.source: is damaged: its SHA-256 is ");
    WriteFile(PackageSource("pen"), PackageContent("pen"));
    TryAgain(*host);
}

TEST_F(UpdatesTest, AMissingPackageIsToldAndFetchedOnceItIsThere) {
    AddAccessory("pen");
    std::filesystem::remove(PackageSource("pen"));
    StartService();
    const auto host = StartHost();
    FailOnce(*host, "No such file or directory [" + PackageSource("pen").string() + "]");
    WriteFile(PackageSource("pen"), PackageContent("pen"));
    TryAgain(*host);
}

TEST_F(UpdatesTest, APauseKeepsThePartFileAlsoOverARestartOfTheService) {
    AddAccessory("pen");
    StartService({"--rate", kSlowRate});
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(kClickPen + "wait percent penprogress 10\n"
                                       "click penstopBtn\n"
                                       "wait text penprogress \"Resume\"\n"
                                       "wait running 0"));
    ASSERT_TRUE(ServiceLogs("pen: paused at "));
    StopService();
    const auto part = std::filesystem::file_size(Part("pen"));
    EXPECT_GE(part, kSize / 10);
    EXPECT_LT(part, kSize);

    StartService();
    ASSERT_TRUE(
        host->Play("wait connected\n"
                   "wait text penprogress \"Resume\"\n"
                   "click penstopBtn\n"
                   "wait text penprogress \"Up to date\"\n"
                   "wait nothing-left"));
    EXPECT_THAT(ServiceLog(), HasSubstr("pen: started, goes on from byte " + std::to_string(part)));
    EXPECT_THAT(ServiceLog(), Not(HasSubstr("pen: goes on: it was")));
    EXPECT_EQ(ReadFile(Arrived("pen")), PackageContent("pen"));
    host->End();
}

TEST_F(UpdatesTest, TheTraceNamesEveryMessageInItsDirection) {
    AddAccessory("pen");
    StartService({"--rate", kSlowRate, "--fail", "pen:50"});
    const auto host = StartHost({"--trace"});
    ASSERT_TRUE(host->Play(kClickPen + "wait percent penprogress 10\n"
                                       "click penstopBtn\n"
                                       "click penstopBtn"));
    ASSERT_TRUE(
        host->Play("wait text penprogress \"Try again\" within 60\n"
                   "click penstopBtn\n"
                   "wait text penprogress \"Up to date\" within 60\n"
                   "wait nothing-left"));
    host->End();
    const std::string transcript = host->Transcript();
    for (const channel::MessageInfo& message : channel::kMessages) {
        char line[128];
        std::snprintf(line, sizeof line, "-> 0x%X %s ", static_cast<unsigned>(message.endpoint), message.name);
        const bool sent = message.direction == channel::Direction::kFromPage;
        const std::string source = sent ? "post 0x270000 " : "got  0xB20001 ";
        EXPECT_THAT(transcript, HasSubstr(source + line)) << transcript;
    }
    EXPECT_THAT(transcript, HasSubstr("IPC_MSG_DOWNLOAD_START 4 bytes \"pen\\x00\"\n"));
    EXPECT_THAT(transcript, HasSubstr("0xB20001 IPC_MSG_ALL_UPDATE_DATA no payload\n"));
}

TEST_F(UpdatesTest, APageOfTwoHundredRowsAppearsWholeAndInOrder) {
    constexpr int kRows = 200;
    for (int i = 0; i < kRows; ++i) AddAccessory("key-" + std::to_string(i), 1000);
    StartService();
    const auto host = StartHost();
    ASSERT_TRUE(host->Play(WaitForRows(kRows, "key-199")));
    host->End();
    const std::string transcript = host->Transcript();
    std::string page = "page:\n  Available updates\n  Keep accessories connected until their updates have ended.\n";
    for (int i = 0; i < kRows; ++i)
        page += "    Drawing Pen | Firmware version 2." + std::to_string(i) + " | <Update>\n";
    EXPECT_THAT(transcript, HasSubstr(page));
    EXPECT_FALSE(std::filesystem::exists(Arrived("key-0")));
}

}  // namespace
}  // namespace e2e
