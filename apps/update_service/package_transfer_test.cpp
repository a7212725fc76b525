#include "package_transfer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "sha256.h"
#include "temporary_folder.h"
#include "test_clock.h"

namespace update_service {
namespace {

using test_support::Bytes;
using test_support::ReadFile;
using test_support::TemporaryFolder;
using test_support::WriteFile;

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::size_t kSize = 1000 * 1000;

class PackageTransfer : public testing::Test {
protected:
    PackageTransfer() { SetSource(Bytes(kSize)); }

    void SetSource(const std::string& content) {
        WriteFile(m_transfer.source, content);
        m_transfer.sha256 = *Sha256OfFile(m_transfer.source);
    }

    TransferResult Run() {
        m_progress.clear();
        return RunTransfer(m_transfer, m_stop.get_token(), [this](int percent) {
            m_progress.push_back(percent);
            if (percent == m_stopAt) m_stop.request_stop();
        });
    }

    // Runs until it has told that percentage.
    void RunTo(int percent) {
        m_stopAt = percent;
        ASSERT_EQ(Run().end, TransferEnd::kStopped);
        m_stopAt = -1;
        m_stop = std::stop_source();
    }

    static std::vector<int> From(int first, int last) {
        std::vector<int> percentages(static_cast<std::size_t>(last - first + 1));
        std::iota(percentages.begin(), percentages.end(), first);
        return percentages;
    }

    std::string Part() const { return ReadFile(m_transfer.files.part); }
    std::string Package() const { return ReadFile(m_transfer.files.package); }

    TemporaryFolder m_folder;
    Transfer m_transfer{m_folder / "source", WorkFilesOf(m_folder.Path(), "pen"), "", 0, {}};
    std::vector<int> m_progress;
    std::stop_source m_stop;
    int m_stopAt = -1;
};

TEST_F(PackageTransfer, TheWholePackageArrivesAndEachPercentIsToldOnce) {
    const TransferResult result = Run();
    EXPECT_EQ(result.end, TransferEnd::kComplete);
    EXPECT_EQ(m_progress, From(0, 100));
    EXPECT_EQ(Package(), Bytes(kSize));
    EXPECT_FALSE(std::filesystem::exists(m_transfer.files.part));
}

TEST_F(PackageTransfer, SmallAndEmptyPackagesArriveToo) {
    for (const std::size_t size : {0u, 1u, 99u, 4096u, 4097u}) {
        SetSource(Bytes(size));
        std::filesystem::remove(m_transfer.files.package);
        EXPECT_EQ(Run().end, TransferEnd::kComplete) << size;
        EXPECT_EQ(Package(), Bytes(size));
        EXPECT_EQ(m_progress.back(), 100);
        EXPECT_TRUE(std::is_sorted(m_progress.begin(), m_progress.end()));
        EXPECT_EQ(std::adjacent_find(m_progress.begin(), m_progress.end()), m_progress.end());
    }
}

TEST_F(PackageTransfer, AStoppedTransferGoesOnFromItsPartFile) {
    RunTo(37);
    EXPECT_EQ(m_progress, From(0, 37));
    EXPECT_EQ(Part(), Bytes(kSize).substr(0, 370000));
    // What is there already is not fetched again: it would be wrong now.
    WriteFile(m_transfer.source, std::string(370000, 'x') + Bytes(kSize).substr(370000));
    EXPECT_EQ(Run().end, TransferEnd::kComplete);
    EXPECT_EQ(m_progress, From(37, 100));
    EXPECT_EQ(Package(), Bytes(kSize));
}

TEST_F(PackageTransfer, AStopThatIsThereAlreadyLeavesEverythingAsItIs) {
    m_stop.request_stop();
    EXPECT_EQ(Run().end, TransferEnd::kStopped);
    EXPECT_TRUE(m_progress.empty());
    EXPECT_FALSE(std::filesystem::exists(m_transfer.files.part));
}

TEST_F(PackageTransfer, AStopAfterTheLastByteIsNotLost) {
    RunTo(99);
    EXPECT_EQ(Part().size(), 990000u);
    m_transfer.failAt = 100;
    EXPECT_EQ(Run().end, TransferEnd::kFailed);
    EXPECT_EQ(Part().size(), kSize);
    m_transfer.failAt.reset();
    m_stop.request_stop();
    EXPECT_EQ(Run().end, TransferEnd::kStopped);
    m_stop = std::stop_source();
    EXPECT_EQ(Run().end, TransferEnd::kComplete);
    EXPECT_THAT(m_progress, ElementsAre(99, 100));
}

TEST_F(PackageTransfer, AMissingPackageIsAFailureThatNamesIt) {
    std::filesystem::remove(m_transfer.source);
    const TransferResult result = Run();
    EXPECT_EQ(result.end, TransferEnd::kFailed);
    EXPECT_THAT(result.reason, HasSubstr(m_transfer.source.string()));
    EXPECT_THAT(result.reason, HasSubstr("No such file"));
    EXPECT_FALSE(result.wasAskedFor);
}

TEST_F(PackageTransfer, ADamagedPackageIsAFailureAndARetryBeginsAnew) {
    std::string damaged = Bytes(kSize);
    damaged[500] ^= 1;
    WriteFile(m_transfer.source, damaged);
    const TransferResult result = Run();
    EXPECT_EQ(result.end, TransferEnd::kFailed);
    EXPECT_THAT(result.reason, HasSubstr("is damaged"));
    EXPECT_EQ(m_progress, From(0, 99));
    EXPECT_FALSE(std::filesystem::exists(m_transfer.files.part));
    EXPECT_FALSE(std::filesystem::exists(m_transfer.files.package));
    SetSource(Bytes(kSize));
    EXPECT_EQ(Run().end, TransferEnd::kComplete);
    EXPECT_EQ(m_progress, From(0, 100));
}

TEST_F(PackageTransfer, APartFileThatIsTooLongIsNotUsed) {
    WriteFile(m_transfer.files.part, std::string(kSize + 1, 'x'));
    EXPECT_EQ(Run().end, TransferEnd::kComplete);
    EXPECT_EQ(m_progress, From(0, 100));
    EXPECT_EQ(Package(), Bytes(kSize));
}

TEST_F(PackageTransfer, APackageThatIsThereAlreadyIsNotFetchedAgain) {
    Run();
    std::filesystem::remove(m_transfer.source);
    EXPECT_EQ(Run().end, TransferEnd::kComplete);
    EXPECT_THAT(m_progress, ElementsAre(100));
}

TEST_F(PackageTransfer, APackageWithAnotherHashIsFetchedAgain) {
    WriteFile(m_transfer.files.package, "something else");
    EXPECT_EQ(Run().end, TransferEnd::kComplete);
    EXPECT_EQ(m_progress, From(0, 100));
    EXPECT_EQ(Package(), Bytes(kSize));
}

TEST_F(PackageTransfer, AFullDiskIsAFailureThatSaysSo) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no full device here";
    std::filesystem::create_symlink("/dev/full", m_transfer.files.part);
    const TransferResult result = Run();
    EXPECT_EQ(result.end, TransferEnd::kFailed);
    EXPECT_THAT(result.reason, HasSubstr("pen.part: No space left on device"));
}

TEST_F(PackageTransfer, FailsWhereItWasAskedTo) {
    m_transfer.failAt = 40;
    const TransferResult result = Run();
    EXPECT_EQ(result.end, TransferEnd::kFailed);
    EXPECT_TRUE(result.wasAskedFor);
    EXPECT_EQ(m_progress, From(0, 40));
    m_transfer.failAt.reset();
    EXPECT_EQ(Run().end, TransferEnd::kComplete);
    EXPECT_EQ(m_progress, From(40, 100));
}

TEST_F(PackageTransfer, KeepsToItsRate) {
    TestClock clock;
    m_transfer.clock = clock;
    m_transfer.bytesPerSecond = 250 * 1000;
    EXPECT_EQ(Run().end, TransferEnd::kComplete);
    EXPECT_EQ(clock.passed, std::chrono::seconds(4));
}

TEST_F(PackageTransfer, AStopDoesNotWaitForTheRate) {
    TestClock clock;
    clock.onWait = [this] { m_stop.request_stop(); };
    m_transfer.clock = clock;
    m_transfer.bytesPerSecond = 1;
    EXPECT_EQ(Run().end, TransferEnd::kStopped);
    EXPECT_EQ(Part().size(), 1u);
    EXPECT_EQ(clock.passed, std::chrono::seconds(0));
}

}  // namespace
}  // namespace update_service
