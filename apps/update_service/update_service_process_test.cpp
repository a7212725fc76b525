// The built program in a process of its own, over a real pipe.

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "base/path.h"
#include "service_process.h"
#include "sha256.h"
#include "test_folder.h"
#include "test_pipe.h"

namespace update_service {
namespace {

namespace from_page = channel::from_page;
namespace to_page = channel::to_page;
using test_support::Bytes;
using test_support::ReadFile;
using test_support::TestFolder;
using test_support::WriteFile;

using Json = nlohmann::ordered_json;
using testing::HasSubstr;

#if defined(_WIN32)
constexpr const char* kCopy = "copy \"%ACCESSORY_PACKAGE%\" \"%ACCESSORY_KEY%.installed\"";
#else
constexpr const char* kCopy = "cp \"$1\" \"$ACCESSORY_KEY.installed\"";
#endif
constexpr std::size_t kSize = 500 * 1000;  // [bytes] of a package

class ServiceProcessTest : public testing::Test {
protected:
    // A service that still runs ends cleanly, which says also that no sanitizer has found anything in it.
    ~ServiceProcessTest() override {
        if (!m_process) return;
        m_process->AskToEnd();
        EXPECT_EQ(Wait(), 0) << Errors();
    }

    void AddAccessory(const std::string& key) {
        WriteFile(m_folder / (key + ".source"), Bytes(kSize));
        m_entries.push_back({{"deviceKey", key},
                             {"modelId", "IDS_" + key},
                             {"image", key + ".png"},
                             {"version", "2"},
                             {"driver", true},
                             {"package", key + ".source"},
                             {"sha256", *Sha256OfFile(m_folder / (key + ".source"))},
                             {"installer", kCopy}});
        WriteFile(m_folder / "catalogue.json", Json{{"accessories", m_entries}}.dump());
    }

    // Starts the program; its standard error goes to the file "stderr".
    void Start(std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"--catalogue", base::Utf8FromPath(m_folder / "catalogue.json"), "--work-dir",
                                         base::Utf8FromPath(m_folder / "work")});
        m_process = std::make_unique<ServiceProcess>(std::move(options), m_folder / "stderr");
    }

    // Waits for the process's end and returns its exit status.
    int Wait() {
        const int status = m_process->Wait();
        m_process.reset();
        return status;
    }

    std::string Errors() const { return ReadFile(m_folder / "stderr"); }

    bool WaitForError(const std::string& text) const { return WaitForText("stderr", text); }

    // Waits until a file of the test's folder holds the text.
    bool WaitForText(const std::string& file, const std::string& text) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (ReadFile(m_folder / file).find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            std::this_thread::yield();
        }
        return true;
    }

    bool WaitForPercent(const std::string& key, int percent) {
        return m_page.Wait([&](const auto& messages) {
            const std::vector<int> told = Percentages(messages, key);
            return !told.empty() && told.back() >= percent;
        });
    }

    // What the page was told of one accessory's progress.
    static std::vector<int> Percentages(const std::vector<PipePage::Message>& messages, const std::string& key) {
        std::vector<int> percentages;
        for (const PipePage::Message& message : messages) {
            if (message.msgId != to_page::IPC_MSG_DOWNLOAD_PROCESS.id) continue;
            const auto progress = channel::Decode<PkgDownloadProcess>(message.data);
            if (progress.deviceKey == key) percentages.push_back(progress.progress);
        }
        return percentages;
    }

    std::vector<std::string> ListedKeys() {
        EXPECT_TRUE(m_page.Wait([](const auto& messages) { return HasList(messages); }));
        std::vector<std::string> keys;
        for (const PipePage::Message& message : m_page.Messages()) {
            if (message.msgId != to_page::IPC_MSG_ALL_UPDATE_DATA.id) continue;
            for (const auto& record : channel::Decode<std::vector<AccessoryVersionDataInfo>>(message.data)) {
                keys.push_back(record.deviceKey);
            }
        }
        return keys;
    }

    static bool HasList(const std::vector<PipePage::Message>& messages) {
        return std::any_of(messages.begin(), messages.end(),
                           [](const auto& message) { return message.msgId == to_page::IPC_MSG_ALL_UPDATE_DATA.id; });
    }

    bool IsInstalled(const std::string& key) const { return ReadFile(m_folder / (key + ".installed")) == Bytes(kSize); }

    TestFolder m_folder;
    TestPipe m_pipe;
    PipePage m_page;
    Json m_entries = Json::array();
    std::unique_ptr<ServiceProcess> m_process;
};

TEST_F(ServiceProcessTest, APageThatWasThereFirstGetsItsListAndItsUpdate) {
    AddAccessory("pen");
    AddAccessory("dock");
    m_page.Ready();
    Start();
    EXPECT_THAT(ListedKeys(), testing::ElementsAre("pen", "dock"));
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"pen"});
    ASSERT_TRUE(m_page.WaitForKey(to_page::IPC_MSG_PKG_FINISH, "pen"));
    EXPECT_EQ(Percentages(m_page.Messages(), "pen").size(), 101u);
    EXPECT_TRUE(IsInstalled("pen"));
}

TEST_F(ServiceProcessTest, KilledInMidDownloadItGoesOnByItselfWhenItIsStartedAgain) {
    AddAccessory("pen");
    Start({"--rate", "200000"});
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"pen"});
    ASSERT_TRUE(WaitForPercent("pen", 10));
    m_process->Kill();
    m_process.reset();
    const auto part = std::filesystem::file_size(m_folder / "work" / "pen.part");
    EXPECT_GE(part, kSize / 10);
    EXPECT_LT(part, kSize);

    Start();
    ASSERT_TRUE(m_page.WaitForKey(to_page::IPC_MSG_PKG_FINISH, "pen"));
    EXPECT_TRUE(IsInstalled("pen"));
    const std::vector<int> told = Percentages(m_page.Messages(), "pen");
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));  // it did not begin anew
    EXPECT_EQ(told.back(), 100);
    EXPECT_THAT(Errors(), HasSubstr("pen: goes on: it was downloading"));
}

TEST_F(ServiceProcessTest, EndsCleanlyHoweverItIsAskedTo) {
    AddAccessory("pen");
    const std::vector<std::string> ways = ServiceProcess::WaysToEnd();
    for (std::size_t way = 0; way < ways.size(); ++way) {
        Start({"--rate", "100000"});
        m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"pen"});
        ASSERT_TRUE(WaitForError("ready"));
        ASSERT_TRUE(WaitForPercent("pen", 1));
        m_process->AskToEnd(way);
        EXPECT_EQ(Wait(), 0);
        EXPECT_GT(std::filesystem::file_size(m_folder / "work" / "pen.part"), 0u);
        EXPECT_THAT(Errors(), HasSubstr(ways[way]));
    }
}

TEST_F(ServiceProcessTest, SaysWhenItIsReadyOnTheConsoleAndInTheLogFile) {
    AddAccessory("pen");
    Start({"--log-file", (m_folder / "service.log").string()});
    const std::string ready = "[4] [UpdateService]ready \\\\.\\Pipe\\iKorvelAssistant";
    EXPECT_TRUE(WaitForText("stderr", ready));
    EXPECT_TRUE(WaitForText("service.log", ready));
}

TEST_F(ServiceProcessTest, ADownloadThatIsToFailDoesSoOnce) {
    AddAccessory("pen");
    Start({"--fail", "pen:30"});
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"pen"});
    ASSERT_TRUE(m_page.WaitForKey(to_page::IPC_MSG_PKG_FAIL, "pen"));
    EXPECT_EQ(Percentages(m_page.Messages(), "pen").back(), 30);
    m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"pen"});
    ASSERT_TRUE(m_page.WaitForKey(to_page::IPC_MSG_PKG_FINISH, "pen"));
    EXPECT_TRUE(IsInstalled("pen"));
}

TEST_F(ServiceProcessTest, ErrorsAtItsStartAreToldAndGiveExitCodeOne) {
    AddAccessory("pen");
    Start({"--fail", "pencil:30"});
    EXPECT_EQ(Wait(), 1);
    EXPECT_THAT(Errors(), HasSubstr("has no accessory \"pencil\""));

    WriteFile(m_folder / "catalogue.json", R"({"accessories": [{"deviceKey": 7}]})");
    Start();
    EXPECT_EQ(Wait(), 1);
    EXPECT_THAT(Errors(), HasSubstr("catalogue.json: accessories[0].deviceKey: must be a text"));
}

TEST_F(ServiceProcessTest, ASecondOneOnThePipeEndsAndLeavesTheFirstAlone) {
    AddAccessory("pen");
    Start();
    ASSERT_TRUE(WaitForError("ready"));
    auto first = std::move(m_process);
    Start();
    EXPECT_EQ(Wait(), 1);
    m_process = std::move(first);
    m_page.Ready();
    EXPECT_THAT(ListedKeys(), testing::ElementsAre("pen"));
}

}  // namespace
}  // namespace update_service
