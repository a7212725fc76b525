#pragma once

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ledger.h"
#include "test_process.h"

// The built service and the built host without a window, each in a process of its own, for a round of the campaign.
namespace campaign {

// The pipe folder of that name, made in the round's folder.
std::filesystem::path MakePipeFolder(const std::filesystem::path& folder, const std::string& name);

inline constexpr char kBrokerFolder[] = "broker";  // where the service listens
inline constexpr char kHostFolder[] = "host";      // where the host looks for it

// The service, on a catalogue that the round writes. An installer appends its device's key to "installed".
class Service {
public:
    explicit Service(const std::filesystem::path& folder) : m_folder(folder) {}

    void AddAccessory(const std::string& key, std::size_t packageSize);
    void SetOptions(std::vector<std::string> options) { m_options = std::move(options); }

    void Start();
    void Kill();
    void Stop(Tally& tally);  // as a signal does; it must end well

    std::string Log() const { return m_earlierLog + m_process->Errors().Text(); }
    std::vector<std::string> Installed() const;  // keys, in the order of their installations

    // The phase of each device, as the state file has it.
    nlohmann::json State() const;

private:
    std::filesystem::path m_folder;
    nlohmann::ordered_json m_entries = nlohmann::ordered_json::array();
    std::vector<std::string> m_options;
    std::unique_ptr<test_process::Process> m_process;
    std::string m_earlierLog;
};

// The host, which carries out script lines (apps/settings_host/script.h) and writes down every message.
class Host {
public:
    explicit Host(const std::filesystem::path& folder);

    // False when a line went wrong.
    bool Play(const std::string& lines);
    bool Holds(const std::string& condition) { return Play("wait " + condition + " within 0"); }

    std::string Transcript() const { return m_process.Output().Text(); }
    std::string Log() const { return m_process.Errors().Text(); }
    void Kill() { m_process.Kill(); }
    void End(Tally& tally);  // leaves the page; it must end well

private:
    test_process::Process m_process;
    int m_played = 0;
};

}  // namespace campaign
