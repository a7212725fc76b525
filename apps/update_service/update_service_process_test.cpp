// The built program in a process of its own, over a real pipe.

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>

#include "base/file.h"
#include "sha256.h"
#include "shell_commands.h"
#include "temporary_folder.h"
#include "test_pipe.h"
#include "test_process.h"
#include "wait_until.h"

#if !defined(_WIN32)
#include <signal.h>
#endif

namespace update_service {
namespace {

namespace from_page = channel::from_page;
namespace to_page = channel::to_page;
using test_support::Bytes;
using test_support::ReadFile;
using test_support::TemporaryFolder;
using test_support::WriteFile;

using Json = nlohmann::ordered_json;
using testing::HasSubstr;

constexpr std::size_t kSize = 500 * 1000;  // [bytes] of a package

class ServiceProcessTest : public testing::Test {
protected:
    // A service that still runs ends cleanly, which says also that no sanitizer has found anything in it.
    ~ServiceProcessTest() override {
        if (!m_process) return;
        m_process->CloseInput();
        EXPECT_EQ(m_process->WaitForEnd(), 0) << Errors();
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
                             {"installer", test_support::kCopyPackage}});
        WriteFile(m_folder / "catalogue.json", Json{{"accessories", m_entries}}.dump());
    }

    // Starts the program, which ends with its input.
    void Start(std::vector<std::string> options = {}) {
        options.insert(options.begin(),
                       {"--end-with-input", "--catalogue", base::Utf8FromPath(m_folder / "catalogue.json"),
                        "--work-dir", base::Utf8FromPath(m_folder / "work")});
        m_process = std::make_unique<test_process::Process>(UPDATE_SERVICE_PROGRAM, options);
    }

    std::string Errors() const { return m_process->Errors().Text(); }
    bool WaitForError(const std::string& text) const { return m_process->Errors().WaitFor(text); }

    // Waits until a file of the test's folder holds the text.
    bool WaitForText(const std::string& file, const std::string& text) const {
        return test_support::WaitUntil([&] { return ReadFile(m_folder / file).find(text) != std::string::npos; });
    }

    // Waits for a percentage that is told after the first `seen` messages.
    bool WaitForPercent(const std::string& key, int percent, std::size_t seen = 0) {
        return m_page.Wait([&](const auto& messages) {
            const std::vector<int> told =
                Percentages({messages.begin() + static_cast<std::ptrdiff_t>(seen), messages.end()}, key);
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

    TemporaryFolder m_folder;
    TestPipe m_pipe;
    PipePage m_page;
    Json m_entries = Json::array();
    std::unique_ptr<test_process::Process> m_process;
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
    const auto part = std::filesystem::file_size(m_folder / "work" / "pen.part");
    EXPECT_GE(part, kSize / 10);
    EXPECT_LT(part, kSize);

    Start({"--rate", "1000000"});  // so that the page is back before the end
    ASSERT_TRUE(m_page.WaitForKey(to_page::IPC_MSG_PKG_FINISH, "pen"));
    EXPECT_TRUE(IsInstalled("pen"));
    const std::vector<int> told = Percentages(m_page.Messages(), "pen");
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));  // it did not begin anew
    EXPECT_EQ(told.back(), 100);
    EXPECT_THAT(Errors(), HasSubstr("pen: goes on: it was downloading"));
}

// Another way to ask in each round, in which the download has to go on first.
TEST_F(ServiceProcessTest, EndsCleanlyHoweverItIsAskedTo) {
    struct Way {
        const char* logged;
        std::function<void()> ask;
    };
    const Way ways[] = {
        {"stops: end of input", [&] { m_process->CloseInput(); }},
#if !defined(_WIN32)
        {"stops: SIGTERM", [&] { m_process->AskToEnd(); }},
        {"stops: SIGINT", [&] { kill(m_process->Id(), SIGINT); }},
        {"stops: SIGHUP", [&] { kill(m_process->Id(), SIGHUP); }},
#endif
    };
    AddAccessory("pen");
    std::uintmax_t fetched = 0;
    for (const Way& way : ways) {
        const std::size_t seen = m_page.Messages().size();
        Start({"--rate", "100000"});
        ASSERT_TRUE(WaitForError("ready"));
        m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"pen"});
        ASSERT_TRUE(WaitForPercent("pen", 1, seen)) << way.logged;
        way.ask();
        EXPECT_EQ(m_process->WaitForEnd(), 0) << Errors();
        EXPECT_THAT(Errors(), HasSubstr(way.logged));
        const auto part = std::filesystem::file_size(m_folder / "work" / "pen.part");
        EXPECT_GT(part, fetched);
        fetched = part;
    }
}

// So many that it is asked to end before it has read them all.
TEST_F(ServiceProcessTest, WhatWasAskedBeforeItEndedItOrTheNextOneCarriesOut) {
    constexpr int kDevices = 40;
    for (int i = 0; i < kDevices; ++i) AddAccessory("key-" + std::to_string(i));
    Start();
    ASSERT_TRUE(WaitForError("ready"));
    for (int i = 0; i < kDevices; ++i) m_page.Ask(from_page::IPC_MSG_DOWNLOAD_START, {"key-" + std::to_string(i)});
    ASSERT_TRUE(WaitForError("key-0: started"));
    m_process->AskToEnd();
    ASSERT_EQ(m_process->WaitForEnd(), 0) << Errors();

    Start();
    for (int i = 0; i < kDevices; ++i) {
        const std::string key = "key-" + std::to_string(i);
        EXPECT_TRUE(test_support::WaitUntil([&] { return IsInstalled(key); })) << key;
    }
}

TEST_F(ServiceProcessTest, SaysWhenItIsReadyOnTheConsoleAndInTheLogFile) {
    AddAccessory("pen");
    Start({"--log-file", (m_folder / "service.log").string()});
    const std::string ready = "[4] [UpdateService]ready \\\\.\\Pipe\\iKorvelAssistant";
    EXPECT_TRUE(WaitForError(ready));
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
    EXPECT_EQ(m_process->WaitForEnd(), 1);
    EXPECT_THAT(Errors(), HasSubstr("has no accessory \"pencil\""));

    WriteFile(m_folder / "catalogue.json", R"({"accessories": [{"deviceKey": 7}]})");
    Start();
    EXPECT_EQ(m_process->WaitForEnd(), 1);
    EXPECT_THAT(Errors(), HasSubstr("catalogue.json: accessories[0].deviceKey: must be a text"));
    m_process.reset();
}

TEST_F(ServiceProcessTest, ASecondOneOnThePipeEndsAndLeavesTheFirstAlone) {
    AddAccessory("pen");
    Start();
    ASSERT_TRUE(WaitForError("ready"));
    auto first = std::move(m_process);
    Start();
    EXPECT_EQ(m_process->WaitForEnd(), 1);
    m_process = std::move(first);
    m_page.Ready();
    EXPECT_THAT(ListedKeys(), testing::ElementsAre("pen"));
}

}  // namespace
}  // namespace update_service
