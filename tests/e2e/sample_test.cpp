// The sample mode: the host with an update service of its own, on a folder with a catalogue, packages and a tour.

#include <signal.h>

#include <thread>

#include "page_e2e_test.h"
#include "sha256.h"

namespace e2e {
namespace {

namespace fs = std::filesystem;

class SampleTest : public PageE2ETest {
protected:
    // The accessory's installer and tour make the sample what a test needs. The key is the one whose download fails at
    // first in sample mode.
    void MakeSample(const std::string& installer = "true", const std::string& tour = kTour) {
        fs::create_directories(m_sample / "packages");
        fs::create_directories(m_temporary);
        WriteFile(m_sample / "packages" / (kKey + ".pkg"), PackageContent(kKey));
        const nlohmann::ordered_json accessory = {
            {"deviceKey", kKey},
            {"modelId", "IDS_NAME_DOCK"},
            {"image", "drawable/Brindle/dock.svg"},
            {"version", "2"},
            {"driver", true},
            {"package", "packages/" + kKey + ".pkg"},
            {"sha256", *update_service::Sha256OfFile(m_sample / "packages" / (kKey + ".pkg"))},
            {"installer", installer}};
        WriteFile(m_sample / "catalogue.json",
                  nlohmann::ordered_json{{"accessories", nlohmann::ordered_json::array({accessory})}}.dump());
        WriteFile(m_sample / "companions.json", "{\"companions\": {}}");
        WriteFile(m_sample / "tour.script", tour);
    }

    // A host in sample mode, whose work folder is in the test's folder.
    std::unique_ptr<test_process::Process> Start(std::vector<std::string> options = {}) {
        options.insert(options.end(), {"--headless", "--wait-percent", "1", "--sample", m_sample.string()});
        auto environment = HostEnvironment();
        environment["TMPDIR"] = m_temporary.string();
        return std::make_unique<test_process::Process>(SETTINGS_HOST_PROGRAM, options, environment);
    }

    std::vector<std::string> WorkFolders() const {
        std::vector<std::string> folders;
        for (const auto& entry : fs::directory_iterator(m_temporary)) folders.push_back(entry.path().string());
        return folders;
    }

    // Runs the host to its end, which is to be a failure, and returns what it says on standard error.
    std::string ErrorOf(std::vector<std::string> options = {}) {
        const auto host = Start(std::move(options));
        EXPECT_EQ(host->WaitForEnd(), 1) << host->Output().Text() << host->Errors().Text();
        return host->Errors().Text();
    }

    void ExpectOneLine(const std::string& error, const std::string& begin) {
        EXPECT_THAT(error, testing::StartsWith(begin));
        EXPECT_EQ(error.find('\n'), error.size() - 1) << error;
        EXPECT_THAT(WorkFolders(), testing::IsEmpty());
    }

    static inline const std::string kKey = "dock-03";
    static inline const std::string kTour =
        "wait shown dock-03updateBtn within 60\n"
        "wait hidden dock-03devInfo\n"
        "click dock-03updateBtn\n"
        "wait text dock-03progress \"Try again\" within 60\n"
        "picture failed.png\n"
        "click dock-03stopBtn\n"
        "wait nothing-left within 60\n";

    const fs::path m_sample = m_folder / "sample";
    const fs::path m_temporary = m_folder / "t";
};

TEST_F(SampleTest, TheTourIsPlayedToItsEndAndTheHostSaysWhatArrivedWhole) {
    MakeSample();
    const fs::path pictures = m_folder / "pictures";
    const auto host = Start({"--pictures", pictures.string(), "--language", "de-DE"});
    ASSERT_EQ(host->WaitForEnd(std::chrono::minutes(2)), 0) << host->Output().Text() << host->Errors().Text();
    EXPECT_THAT(host->Output().Lines(), Contains("host: no update is left"));
    EXPECT_THAT(host->Output().Lines(), Contains("arrived whole: dock-03.pkg"));
    EXPECT_EQ(host->Output().Lines().back(), "The tour is complete; its pictures are in " + pictures.string() + ".");
    EXPECT_EQ(host->Errors().Text(), "");
    EXPECT_TRUE(fs::is_regular_file(pictures / "failed.png"));
    EXPECT_THAT(WorkFolders(), testing::IsEmpty());
}

TEST_F(SampleTest, APackageThatDidNotArriveWholeFailsTheTourAndLeavesTheLogs) {
    MakeSample("echo more >> \"$ACCESSORY_PACKAGE\"");
    WriteFile(m_sample / "packages" / "unknown.pkg", "of no accessory");
    const std::string error = ErrorOf();
    ASSERT_THAT(WorkFolders(), testing::SizeIs(1));
    EXPECT_THAT(error, testing::StartsWith("settings_host: dock-03.pkg did not arrive whole; "
                                           "unknown.pkg did not arrive whole\nsettings_host: the logs are in " +
                                           WorkFolders()[0] + "; the update service's ends with:\n"));
    EXPECT_THAT(error, HasSubstr("[UpdateService]stops: "));
    EXPECT_TRUE(fs::is_regular_file(fs::path(WorkFolders()[0]) / "host.log"));
}

TEST_F(SampleTest, ATourThatLeavesAnUpdateFails) {
    MakeSample("true", "wait shown dock-03updateBtn within 60\n");
    EXPECT_THAT(ErrorOf(), testing::StartsWith("settings_host: the host was not told that nothing is left; "
                                               "dock-03.pkg did not arrive whole\n"));
}

TEST_F(SampleTest, ATourThatIsStoppedFails) {
    MakeSample("true", "say waiting\nwait nothing-left within 600\n");
    const auto host = Start();
    ASSERT_TRUE(host->Output().WaitFor("# waiting"));
    host->AskToEnd();
    EXPECT_EQ(host->WaitForEnd(), 1) << host->Output().Text();
    EXPECT_EQ(host->Output().Lines().back(), "stopped");
}

TEST_F(SampleTest, AScriptOfTheUsersIsPlayedInsteadOfTheTour) {
    MakeSample("true", "say the tour\n");
    WriteFile(m_folder / "own.script", "wait shown dock-03updateBtn within 60\nsay mine\n");
    const auto host = Start({"--script", (m_folder / "own.script").string()});
    ASSERT_EQ(host->WaitForEnd(), 0) << host->Output().Text() << host->Errors().Text();
    EXPECT_THAT(host->Output().Lines(), Contains("# mine"));
    EXPECT_THAT(host->Output().Text(), Not(HasSubstr("the tour")));
    EXPECT_THAT(WorkFolders(), testing::IsEmpty());
}

TEST_F(SampleTest, TheServiceEndsWithAHostThatIsKilled) {
    MakeSample("true", "say waiting\nwait nothing-left within 600\n");
    const auto host = Start();
    ASSERT_TRUE(host->Output().WaitFor("# waiting"));
    ASSERT_THAT(WorkFolders(), testing::SizeIs(1));
    const fs::path log = fs::path(WorkFolders()[0]) / "service.log";
    host->Kill();
    EXPECT_EQ(host->WaitForEnd(), -SIGKILL);
    const std::string last = "[UpdateService]stops: end of input";
    EXPECT_TRUE(WaitUntil([&] { return ReadFile(log).find(last) != std::string::npos; })) << ReadFile(log);
}

TEST_F(SampleTest, WhatASampleLacksIsNamedInOneLine) {
    for (const char* name : {"tour.script", "companions.json", "catalogue.json", "packages", ""}) {
        SCOPED_TRACE(name);
        MakeSample();
        fs::remove_all(name[0] == '\0' ? m_sample : m_sample / name);
        const fs::path missing = m_sample / (name[0] == '\0' ? "catalogue.json" : name);
        ExpectOneLine(ErrorOf(),
                      "settings_host: " + missing.string() + ": cannot be read: No such file or directory\n");
    }
}

TEST_F(SampleTest, ACatalogueThatTheServiceRefusesIsToldAsTheServiceTellsIt) {
    MakeSample();
    WriteFile(m_sample / "catalogue.json", R"({"accessories": [{"deviceKey": "pen", "modelId": 7}]})");
    ExpectOneLine(ErrorOf(), "settings_host: update_service: " + (m_sample / "catalogue.json").string() +
                                 ": accessories[0].modelId: must be a text\n");
}

TEST_F(SampleTest, AMissingModuleIsNamedInOneLine) {
    MakeSample();
    const std::string nowhere = (m_folder / "nowhere").string();
    ExpectOneLine(ErrorOf({"--module", nowhere}), "settings_host: " + nowhere + ": the module cannot be loaded: ");
}

}  // namespace
}  // namespace e2e
