#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

#include "sha256.h"
#include "shell_commands.h"
#include "temporary_folder.h"
#include "update_service.h"

namespace update_service {

using test_support::Bytes;
using test_support::ReadFile;
using test_support::Shell;
using test_support::TemporaryFolder;
using test_support::WriteFile;

// Lines that any thread adds to and the test waits for.
class Record {
public:
    void Add(const std::string& line) {
        const std::lock_guard guard(m_mutex);
        m_lines.push_back(line);
        m_changed.notify_all();
    }

    // Waits until that line has come `times` times; false when it does not come.
    bool Has(const std::string& line, std::ptrdiff_t times = 1) const {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(20),
                                  [&] { return std::count(m_lines.begin(), m_lines.end(), line) >= times; });
    }

    std::vector<std::string> Lines() const {
        const std::lock_guard guard(m_mutex);
        return m_lines;
    }

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<std::string> m_lines;
};

// Pages that live through all of a test and write down what they are told, each event once: "list pen mouse", "progress
// pen 37", "ended pen", "failed pen".
class RecordingPage final : public PageLink {
public:
    void SendList(const IpcLife&, const std::vector<Accessory>& accessories) override {
        std::string line = "list";
        for (const Accessory& accessory : accessories) line += " " + accessory.deviceKey;
        told.Add(line);
    }
    void SendProgress(const Pages& pages, const std::string& deviceKey, int percent) override {
        if (pages.empty()) return;
        told.Add("progress " + deviceKey + " " + std::to_string(percent));
    }
    void Send(const Pages& pages, const channel::ToPage<channel::DeviceKey>& message, const std::string& deviceKey,
              std::uint64_t event) override {
        const bool ended = message.id == channel::to_page::IPC_MSG_PKG_FINISH.id;
        const bool failed = message.id == channel::to_page::IPC_MSG_PKG_FAIL.id;
        const std::lock_guard guard(m_mutex);
        m_lastPages = pages;
        for (const IpcLife& page : pages) {
            if (event != 0 && !m_events.emplace(page, event).second) continue;
            told.Add((ended ? "ended " : failed ? "failed " : message.name + std::string(" ")) + deviceKey);
        }
    }

    Pages LastPages() const {  // that an end or a failure was sent to
        const std::lock_guard guard(m_mutex);
        return m_lastPages;
    }

    Record told;

private:
    mutable std::mutex m_mutex;
    Pages m_lastPages;
    std::set<std::pair<IpcLife, std::uint64_t>> m_events;
};

inline const IpcLife kPage{{1}};  // the page, as the service knows it

// A catalogue, a service and a page. Installers copy the package to "KEY.installed".
class ServiceTest : public testing::Test {
protected:
    static constexpr std::size_t kSize = 500 * 1000;    // [bytes] of a package
    static constexpr std::uint64_t kSlow = 250 * 1000;  // [bytes/s] slow enough to be caught on the way

    ServiceTest() {
        m_catalogue.folder = m_folder.Path();
        m_options.workFolder = m_folder / "work";
        std::filesystem::create_directory(m_options.workFolder);
    }

    void AddAccessory(const std::string& key) {
        Accessory accessory;
        accessory.deviceKey = key;
        accessory.version = "2";
        accessory.package = m_folder / (key + ".source");
        accessory.installer = Shell(test_support::kCopyPackage);
        WriteFile(accessory.package, Bytes(kSize));
        accessory.sha256 = *Sha256OfFile(accessory.package);
        m_catalogue.accessories.push_back(accessory);
    }

    // An installer that waits until LetInstall is called, and the call.
    static std::vector<std::string> WaitingInstaller() { return Shell(test_support::kWaitForGate); }
    void LetInstall() const { WriteFile(m_folder / "gate", "go\n"); }

    // The service as the process's start makes it; an earlier one has been stopped.
    void Start() {
        m_service.reset();
        m_service = std::make_unique<UpdateService>(
            m_catalogue, m_options, m_page,
            Log([this](LOG_MESSAGE_LEVEL, const std::string& line) { m_log.Add(line); }));
        m_service->OnReturned(kPage);
        m_service->Resume();
    }

    bool Told(const std::string& line, std::ptrdiff_t times = 1) const { return m_page.told.Has(line, times); }

    // What the page was told so far of one accessory's progress.
    std::vector<int> Progress(const std::string& key) const {
        std::vector<int> percentages;
        const std::string start = "progress " + key + " ";
        for (const std::string& line : m_page.told.Lines()) {
            if (line.starts_with(start)) percentages.push_back(std::stoi(line.substr(start.size())));
        }
        return percentages;
    }

    std::uint64_t PartSize(const std::string& key) const {
        return std::filesystem::file_size(WorkFilesOf(m_options.workFolder, key).part);
    }
    bool IsInstalled(const std::string& key) const { return ReadFile(m_folder / (key + ".installed")) == Bytes(kSize); }
    Phase Remembered(const std::string& key) const {
        return ReadState(m_options.workFolder / "state.json").at(key).phase;
    }

    TemporaryFolder m_folder;
    Catalogue m_catalogue;
    ServiceOptions m_options;
    RecordingPage m_page;
    Record m_log;
    std::unique_ptr<UpdateService> m_service;
};

}  // namespace update_service
