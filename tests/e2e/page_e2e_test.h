#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "temporary_folder.h"
#include "test_process.h"
#include "wait_until.h"

// The accessory page from end to end: the built service and the built host, each in a process of its own, over a real
// pipe in the test's own folder, with package files that the test writes. Only the page's pauses are shorter.
namespace e2e {

using test_support::ReadFile;
using test_support::WaitUntil;
using test_support::WriteFile;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

// Where a control is on the desktop [device px].
struct Place {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const Place&) const = default;
};

// A settings host that carries out what the test plays to it (apps/settings_host/script.h).
class Host {
public:
    Host(const std::vector<std::string>& arguments, const std::map<std::string, std::string>& environment);

    // Returns once the host has carried out these script lines; false, and a failure of the test, when one went wrong.
    [[nodiscard]] bool Play(const std::string& lines);

    // Whether a condition of `wait` holds at this moment.
    [[nodiscard]] bool Holds(const std::string& condition);

    // Where a control is; nowhere, and a failure of the test, when no control has the name.
    Place Where(const std::string& control);

    // Ends the script: the host leaves the page and ends well, with no complaint of a sanitizer.
    void End();

    test_process::Process& Program() { return m_process; }
    std::string Transcript() const { return m_process.Output().Text(); }
    std::string Log() const { return m_process.Errors().Text(); }

private:
    // Plays the lines and returns what the transcript says meanwhile.
    std::string Answer(const std::string& lines);

    test_process::Process m_process;
    int m_played = 0;
};

// Script lines: the page shows its list of so many rows whole, `lastKey` being the last, and can be clicked on.
std::string WaitForRows(int rows, const std::string& lastKey);

class PageE2ETest : public testing::Test {
protected:
    PageE2ETest();
    ~PageE2ETest() override;  // ends the service that still runs, and expects it to end well

    // Adds an accessory to the catalogue and writes its package. The installer is a shell text.
    void AddAccessory(const std::string& key, std::size_t packageSize = kSize, const std::string& installer = "true");
    std::string PackageContent(const std::string& key, std::size_t size = kSize) const;
    std::filesystem::path PackageSource(const std::string& key) const { return m_folder / (key + ".source"); }

    // The package as the service has fetched and checked it; what it has fetched so far.
    std::filesystem::path Arrived(const std::string& key) const { return m_folder / "work" / (key + ".pkg"); }
    std::filesystem::path Part(const std::string& key) const { return m_folder / "work" / (key + ".part"); }

    // Starts a service on the test's catalogue, or on another one. Where it must be ready before the test goes on, the
    // test waits for its log line.
    void StartService(std::vector<std::string> options = {}, std::filesystem::path catalogue = {});
    void KillService();
    void StopService();
    std::string ServiceLog() const { return m_service->Errors().Text(); }
    [[nodiscard]] bool ServiceLogs(const std::string& text) const { return m_service->Errors().WaitFor(text); }

    // The page waits a hundredth of its time; options that are given here win over those of every test.
    std::unique_ptr<Host> StartHost(std::vector<std::string> options = {},
                                    const std::map<std::string, std::string>& environment = {}) const;

    // The same in a window on the display, in English.
    std::unique_ptr<Host> StartHostInWindow(const std::string& display, std::vector<std::string> options = {},
                                            const std::map<std::string, std::string>& environment = {}) const;

    // Both programs' environment: the pipe in the test's folder. The host's has a locale, too.
    std::map<std::string, std::string> Environment() const;
    std::map<std::string, std::string> HostEnvironment() const;
    std::map<std::string, std::string> WindowEnvironment(const std::string& display) const;
    std::filesystem::path PipeSocket() const { return m_folder / "pipes" / "iKorvelAssistant.sock"; }

    static constexpr std::size_t kSize = 200 * 1000;       // [bytes] of a package
    static inline const std::string kSlowRate = "100000";  // [bytes/s] slow enough to be caught on the way

    test_support::TemporaryFolder m_folder;
    std::unique_ptr<test_process::Process> m_service;

private:
    nlohmann::ordered_json m_entries = nlohmann::ordered_json::array();
};

}  // namespace e2e
