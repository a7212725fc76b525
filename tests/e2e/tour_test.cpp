// The sample tour: every way through an update, with the sample catalogue and its script.

#include <algorithm>
#include <fstream>

#include "page_e2e_test.h"
#include "sha256.h"

namespace e2e {
namespace {

const std::filesystem::path kSample = SAMPLE_CATALOGUE_DIR;

class TourTest : public PageE2ETest {};

TEST_F(TourTest, TheSampleTourEndsWithNoUpdateLeftAndEveryPackageWhole) {
    StartService({"--rate", "2500000", "--fail", "dock-03:40"}, kSample / "catalogue.json");
    test_process::Process host(SETTINGS_HOST_PROGRAM,
                               {"--headless", "--language", "en-US", "--pictures", m_folder.Path().string(),
                                "--companions", (kSample / "companions.json").string(), "--script",
                                (kSample / "tour.script").string(), "--report-file", (m_folder / "reports").string()},
                               HostEnvironment());
    ASSERT_EQ(host.WaitForEnd(std::chrono::minutes(3)), 0) << host.Output().Text() << host.Errors().Text();

    const std::vector<std::string> transcript = host.Output().Lines();
    EXPECT_THAT(transcript, Contains("host: no update is left"));
    const auto lastPage = std::find_if(transcript.rbegin(), transcript.rend(),
                                       [](const std::string& line) { return line.starts_with("page:"); });
    ASSERT_NE(lastPage, transcript.rend());
    EXPECT_EQ(*lastPage, "page: (nothing is shown)");
    EXPECT_THAT(ServiceLog(), HasSubstr("dock-03: failed: at 40 percent, as asked for"));

    for (const char* picture : {"list.png", "paused.png", "installing.png", "finished.png", "failed.png", "refused.png",
                                "running.png", "up-to-date.png"}) {
        EXPECT_TRUE(std::filesystem::is_regular_file(m_folder / picture)) << picture;
    }

    std::ifstream file(kSample / "catalogue.json");
    const auto accessories = nlohmann::json::parse(file)["accessories"];
    ASSERT_EQ(accessories.size(), 5u);
    for (const auto& accessory : accessories) {
        const std::string key = accessory["deviceKey"];
        EXPECT_EQ(*update_service::Sha256OfFile(Arrived(key)), accessory["sha256"].get<std::string>()) << key;
        EXPECT_THAT(ReadFile(m_folder / "reports"), HasSubstr(accessory["modelId"].get<std::string>()));
    }
}

}  // namespace
}  // namespace e2e
