#include "update_service.h"

#include <algorithm>
#include <numeric>

#include "service_test_support.h"

namespace update_service {
namespace {

using test_support::Bytes;
using test_support::ReadFile;
using test_support::WriteFile;

const IpcLife kOtherPage{{2}};

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

std::vector<int> Percentages(int first, int last) {
    std::vector<int> all(static_cast<std::size_t>(last - first + 1));
    std::iota(all.begin(), all.end(), first);
    return all;
}

// How tests of one accessory begin.
class PenTest : public ServiceTest {
protected:
    [[nodiscard]] bool UpdatePen() {
        AddAccessory("pen");
        Start();
        m_service->OnStart(kPage, "pen");
        return Told("ended pen");
    }

    [[nodiscard]] bool FetchPenSlowly() {
        AddAccessory("pen");
        m_options.bytesPerSecond = kSlow;
        Start();
        m_service->OnStart(kPage, "pen");
        return Told("progress pen 5");
    }

    [[nodiscard]] bool InstallPenUntilLet() {
        AddAccessory("pen");
        m_catalogue.accessories[0].installer = WaitingInstaller();
        Start();
        m_service->OnStart(kPage, "pen");
        return m_log.Has("pen: the installer starts");
    }

    [[nodiscard]] bool StartAndFail() {
        Start();
        m_service->OnStart(kPage, "pen");
        return Told("failed pen");
    }
};

TEST_F(ServiceTest, AReadyPageGetsTheListInTheOrderOfTheCatalogue) {
    for (const char* key : {"pen", "mouse", "dock"}) AddAccessory(key);
    Start();
    m_service->OnReady(kPage);
    EXPECT_TRUE(Told("list pen mouse dock"));
}

TEST_F(PenTest, AStartFetchesInstallsAndTellsTheEnd) {
    ASSERT_TRUE(UpdatePen());
    EXPECT_EQ(Progress("pen"), Percentages(0, 100));
    EXPECT_TRUE(IsInstalled("pen"));
    EXPECT_EQ(ReadFile(WorkFilesOf(m_options.workFolder, "pen").package), Bytes(kSize));
    EXPECT_TRUE(m_log.Has("pen: installed version 2"));
}

TEST_F(ServiceTest, WhatIsInstalledIsNotListedAgain) {
    for (const char* key : {"pen", "mouse"}) AddAccessory(key);
    Start();
    m_service->OnStart(kPage, "pen");
    ASSERT_TRUE(Told("ended pen"));
    m_service->OnReady(kPage);
    EXPECT_TRUE(Told("list mouse"));
    Start();
    m_service->OnReady(kPage);
    EXPECT_TRUE(Told("list mouse", 2));
}

TEST_F(PenTest, AStartOfWhatIsInstalledIsAnsweredWithTheEnd) {
    ASSERT_TRUE(UpdatePen());
    m_service->OnStart(kOtherPage, "pen");
    EXPECT_TRUE(Told("ended pen", 2));
}

TEST_F(PenTest, AnotherPackageInTheCatalogueMakesAnAccessoryNewAgain) {
    ASSERT_TRUE(UpdatePen());
    const WorkFiles files = WorkFilesOf(m_options.workFolder, "pen");
    WriteFile(files.part, "of the old package");

    WriteFile(m_catalogue.accessories[0].package, "new");
    m_service.reset();
    m_catalogue.accessories[0].sha256 = *Sha256OfFile(m_catalogue.accessories[0].package);
    Start();
    EXPECT_FALSE(std::filesystem::exists(files.part));
    m_service->OnReady(kPage);
    EXPECT_TRUE(Told("list pen"));
    m_service->OnStart(kPage, "pen");
    EXPECT_TRUE(Told("ended pen", 2));
    EXPECT_EQ(ReadFile(m_folder / "pen.installed"), "new");
}

TEST_F(PenTest, APauseKeepsThePartFileAndAStartGoesOnFromIt) {
    ASSERT_TRUE(FetchPenSlowly());
    m_service->OnPause(kPage, "pen");
    EXPECT_EQ(Remembered("pen"), Phase::kPaused);
    const std::vector<int> before = Progress("pen");
    EXPECT_LT(before.back(), 100);
    m_service->Stop();  // the worker has come to its end
    EXPECT_EQ(Progress("pen"), before);
    EXPECT_GE(PartSize("pen"), kSize / 20);

    m_options.bytesPerSecond = 0;
    Start();
    m_service->OnStart(kPage, "pen");
    ASSERT_TRUE(Told("ended pen"));
    std::vector<int> after = Progress("pen");
    after.erase(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(before.size()));
    EXPECT_GE(after.front(), before.back());
    EXPECT_EQ(after, Percentages(after.front(), 100));
    EXPECT_TRUE(IsInstalled("pen"));
}

TEST_F(ServiceTest, PausesAndStartsInQuickSuccessionLoseNothing) {
    AddAccessory("pen");
    m_options.bytesPerSecond = 4 * kSlow;
    Start();
    for (int i = 0; i < 50; ++i) {
        m_service->OnStart(kPage, "pen");
        m_service->OnPause(kPage, "pen");
    }
    m_service->OnStart(kPage, "pen");
    ASSERT_TRUE(Told("ended pen"));
    EXPECT_TRUE(IsInstalled("pen"));
    EXPECT_THAT(m_page.told.Lines(), Not(Contains("failed pen")));
}

TEST_F(PenTest, AStartWhileItRunsIsAnsweredWithThePresentProgress) {
    ASSERT_TRUE(FetchPenSlowly());
    m_service->OnStart(kPage, "pen");
    const std::vector<int> progress = Progress("pen");
    EXPECT_NE(std::adjacent_find(progress.begin(), progress.end()), progress.end());
    EXPECT_TRUE(m_log.Has("pen: runs already"));
}

TEST_F(PenTest, APauseDuringTheInstallationIsIgnoredAndItsEndIsTold) {
    ASSERT_TRUE(InstallPenUntilLet());
    m_service->OnPause(kPage, "pen");
    EXPECT_TRUE(m_log.Has("pen: pause ignored: it is installing"));
    m_service->OnStart(kPage, "pen");
    EXPECT_TRUE(Told("progress pen 100", 2));
    LetInstall();
    EXPECT_TRUE(Told("ended pen"));
}

TEST_F(ServiceTest, APauseOfWhatDoesNotRunIsIgnored) {
    AddAccessory("pen");
    Start();
    m_service->OnPause(kPage, "pen");
    EXPECT_TRUE(m_log.Has("pen: pause ignored: it is idle"));
    m_service->OnPause(kPage, "unknown");
    EXPECT_TRUE(m_log.Has("unknown: pause ignored: the catalogue does not have it"));
    EXPECT_TRUE(m_page.told.Lines().empty());
}

TEST_F(ServiceTest, AStartOfAnUnknownAccessoryFails) {
    Start();
    m_service->OnStart(kPage, "unknown");
    EXPECT_TRUE(Told("failed unknown"));
    EXPECT_TRUE(m_log.Has("unknown: start refused: the catalogue does not have it"));
}

TEST_F(ServiceTest, RequestsWithoutEndMakeLinesOfTheirOwnOnlyAndNotWithoutEnd) {
    constexpr int kRequests = 1000;
    AddAccessory("pen");
    Start();
    for (int i = 0; i < kRequests; ++i) {
        m_service->OnStart(kPage, "unknown " + std::to_string(i));
        m_service->OnPause(kPage, "pen");
        m_service->OnReady(kPage);
    }
    m_service->OnStart(kPage, "pen");
    ASSERT_TRUE(Told("ended pen"));
    EXPECT_TRUE(m_log.Has("pen: installed version 2"));
    EXPECT_THAT(m_log.Lines(), testing::SizeIs(testing::Lt(200u)));
    m_service.reset();
    EXPECT_TRUE(m_log.Has("940 lines about requests for accessories that the catalogue does not have were left out"));
    EXPECT_TRUE(m_log.Has("941 lines about requests for pen were left out"));
    EXPECT_TRUE(m_log.Has("940 lines about requests for the list were left out"));
}

TEST_F(ServiceTest, AnUnknownKeyIsNotShownBeyondWhatALineIsFor) {
    Start();
    m_service->OnStart(kPage, std::string(1000000, 'x'));
    EXPECT_TRUE(
        m_log.Has(std::string(100, 'x') + "... (1000000 bytes): start refused: the catalogue does not have it"));
    EXPECT_TRUE(Told("failed " + std::string(1000000, 'x')));
}

TEST_F(PenTest, AMissingPackageFailsAndARetrySucceedsOnceItIsThere) {
    AddAccessory("pen");
    const auto package = m_catalogue.accessories[0].package;
    std::filesystem::remove(package);
    ASSERT_TRUE(StartAndFail());
    EXPECT_THAT(m_log.Lines(), Contains(testing::AllOf(HasSubstr("pen: failed: "), HasSubstr("No such file"),
                                                       HasSubstr(package.string()))));
    EXPECT_EQ(Remembered("pen"), Phase::kFailed);
    WriteFile(package, Bytes(kSize));
    m_service->OnStart(kPage, "pen");
    EXPECT_TRUE(Told("ended pen"));
}

TEST_F(PenTest, ADamagedPackageFailsBeforeItsInstallation) {
    AddAccessory("pen");
    WriteFile(m_catalogue.accessories[0].package, "damaged");
    ASSERT_TRUE(StartAndFail());
    EXPECT_THAT(m_log.Lines(), Contains(HasSubstr("is damaged: its SHA-256 is")));
    EXPECT_FALSE(IsInstalled("pen"));
    EXPECT_THAT(m_page.told.Lines(), Not(Contains("progress pen 100")));
    WriteFile(m_catalogue.accessories[0].package, Bytes(kSize));
    m_service->OnStart(kPage, "pen");
    EXPECT_TRUE(Told("ended pen"));
    EXPECT_TRUE(IsInstalled("pen"));
}

TEST_F(PenTest, AFailingInstallerIsToldAndARetryDoesNotFetchAgain) {
    AddAccessory("pen");
    m_catalogue.accessories[0].installer = Shell(test_support::kFailUnlessAllowed);
    ASSERT_TRUE(StartAndFail());
    EXPECT_TRUE(m_log.Has("pen: failed: installer: exit status 7"));
    std::filesystem::remove(m_catalogue.accessories[0].package);
    WriteFile(m_folder / "allowed", "");
    m_service->OnStart(kPage, "pen");
    EXPECT_TRUE(Told("ended pen"));
    EXPECT_EQ(Progress("pen").back(), 100);
}

TEST_F(PenTest, AFullDiskFailsAndTheLogSaysSo) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no full device here";
    AddAccessory("pen");
    std::filesystem::create_symlink("/dev/full", WorkFilesOf(m_options.workFolder, "pen").part);
    ASSERT_TRUE(StartAndFail());
    EXPECT_THAT(m_log.Lines(), Contains(HasSubstr("No space left on device")));
}

TEST_F(PenTest, ADownloadThatIsToFailDoesSoOnce) {
    AddAccessory("pen");
    m_options.failAt["pen"] = 40;
    ASSERT_TRUE(StartAndFail());
    EXPECT_EQ(Progress("pen"), Percentages(0, 40));
    m_service->OnStart(kPage, "pen");
    ASSERT_TRUE(Told("ended pen"));
    EXPECT_TRUE(IsInstalled("pen"));
    EXPECT_TRUE(m_log.Has("pen: failed: at 40 percent, as asked for"));
}

TEST_F(ServiceTest, SeveralAccessoriesAreUpdatedAtOnce) {
    const std::vector<std::string> keys = {"a", "b", "c", "d", "e"};
    for (const std::string& key : keys) AddAccessory(key);
    m_options.bytesPerSecond = kSlow;
    Start();
    for (const std::string& key : keys) m_service->OnStart(kPage, key);
    for (const std::string& key : keys) EXPECT_TRUE(Told("progress " + key + " 5"));
    EXPECT_THAT(m_page.told.Lines(), Not(Contains(testing::StartsWith("ended"))));  // none waited for another one
    m_service->OnPause(kPage, "c");
    m_options.bytesPerSecond = 0;
    Start();
    for (const std::string key : {"a", "b", "d", "e"}) {
        EXPECT_TRUE(Told("ended " + key));
        EXPECT_TRUE(IsInstalled(key));
    }
    EXPECT_THAT(m_page.told.Lines(), Not(Contains("ended c")));
    m_service->OnStart(kPage, "c");
    EXPECT_TRUE(Told("ended c"));
    EXPECT_TRUE(IsInstalled("c"));
    m_service->OnReady(kPage);
    EXPECT_TRUE(Told("list"));
}

TEST_F(ServiceTest, AnInstallerThatRunsHoldsUpNobodyElse) {
    AddAccessory("slow");
    AddAccessory("quick");
    m_catalogue.accessories[0].installer = WaitingInstaller();
    Start();
    m_service->OnStart(kPage, "slow");
    ASSERT_TRUE(m_log.Has("slow: the installer starts"));
    m_service->OnStart(kPage, "quick");
    EXPECT_TRUE(Told("ended quick"));
    EXPECT_THAT(m_page.told.Lines(), Not(Contains("ended slow")));
    LetInstall();
    EXPECT_TRUE(Told("ended slow"));
}

TEST_F(PenTest, ADownloadThatRanWhenTheServiceStoppedGoesOnByItself) {
    ASSERT_TRUE(FetchPenSlowly());
    m_service->Stop();
    EXPECT_EQ(Remembered("pen"), Phase::kDownloading);
    const std::vector<int> before = Progress("pen");

    m_options.bytesPerSecond = 0;
    Start();
    ASSERT_TRUE(Told("ended pen"));
    const std::vector<int> all = Progress("pen");
    EXPECT_GE(all.at(before.size()), before.back());
    EXPECT_TRUE(IsInstalled("pen"));
    EXPECT_TRUE(m_log.Has("pen: goes on: it was downloading"));
}

TEST_F(ServiceTest, WhatIsAskedWhileTheServiceStopsTheNextOneDoes) {
    for (const char* key : {"pen", "dock"}) AddAccessory(key);
    m_options.bytesPerSecond = kSlow;
    Start();
    m_service->OnStart(kPage, "dock");
    ASSERT_TRUE(Told("progress dock 5"));
    m_service->Stop();
    m_service->OnStart(kPage, "pen");
    m_service->OnPause(kPage, "dock");
    EXPECT_EQ(Remembered("pen"), Phase::kDownloading);
    EXPECT_EQ(Remembered("dock"), Phase::kPaused);

    m_options.bytesPerSecond = 0;
    Start();
    m_service->OnReady(kPage);
    ASSERT_TRUE(Told("ended pen"));
    EXPECT_TRUE(IsInstalled("pen"));
    EXPECT_FALSE(IsInstalled("dock"));
}

TEST_F(PenTest, APausedDownloadStaysPausedInTheNextService) {
    ASSERT_TRUE(FetchPenSlowly());
    m_service->OnPause(kPage, "pen");
    Start();
    m_service->OnPause(kPage, "pen");
    EXPECT_TRUE(m_log.Has("pen: pause ignored: it is paused"));
}

TEST_F(PenTest, AnInstallationThatWasCutOffIsDoneAgain) {
    m_options.stopGrace = std::chrono::milliseconds(0);
    ASSERT_TRUE(InstallPenUntilLet());
    m_service->Stop();
    EXPECT_TRUE(m_log.Has("pen: the installer still runs while the service stops"));
    EXPECT_EQ(Remembered("pen"), Phase::kInstalling);
    LetInstall();  // ends the abandoned one

    m_service.reset();
    m_catalogue.accessories[0].installer = Shell(test_support::kCopyPackage);
    Start();
    ASSERT_TRUE(Told("ended pen"));
    EXPECT_TRUE(m_log.Has("pen: goes on: it was installing"));
    EXPECT_TRUE(IsInstalled("pen"));
}

TEST_F(ServiceTest, AStateFileThatCannotBeUnderstoodIsPutAside) {
    AddAccessory("pen");
    WriteFile(m_options.workFolder / "state.json", "rubbish");
    Start();
    EXPECT_EQ(ReadFile(m_options.workFolder / "state.json.bad"), "rubbish");
    EXPECT_THAT(m_log.Lines(), Contains(HasSubstr("the state file is put aside")));
    m_service->OnStart(kPage, "pen");
    EXPECT_TRUE(Told("ended pen"));
}

TEST_F(ServiceTest, LogLinesThatCannotBeWrittenEndNeitherAnUpdateNorTheService) {
    AddAccessory("pen");
    AddAccessory("broken");
    m_catalogue.accessories[1].sha256 = std::string(64, '0');
    UpdateService service(m_catalogue, m_options, m_page,
                          Log([](LOG_MESSAGE_LEVEL, const std::string&) { throw std::bad_alloc(); }));
    service.Resume();
    service.OnReady(kPage);
    service.OnStart(kPage, "nobody");
    service.OnPause(kPage, "nobody");
    service.OnPause(kPage, "pen");
    service.OnStart(kPage, "broken");
    service.OnStart(kPage, "pen");
    EXPECT_TRUE(Told("ended pen"));
    EXPECT_TRUE(Told("failed broken"));
}

TEST_F(ServiceTest, AStateThatCannotBeWrittenIsLoggedAndTheUpdateGoesOn) {
    AddAccessory("pen");
    std::filesystem::create_directory(m_options.workFolder / "state.json.new");
    Start();
    m_service->OnStart(kPage, "pen");
    EXPECT_TRUE(Told("ended pen"));
    EXPECT_THAT(m_log.Lines(), Contains(HasSubstr("the state cannot be written")));
}

}  // namespace
}  // namespace update_service
