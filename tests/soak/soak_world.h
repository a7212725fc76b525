#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "base/child_process.h"
#include "devices.h"
#include "usage_record.h"

namespace soak {

// The built service with twenty devices, and hosts whose pages come and go, each in a process of its own. Ten devices
// have a damaged package and five an installer that fails: they are tried again and again. The other five get a new
// package each time the service is restarted.
//
// One thread. What cannot be started, or ends badly, throws std::runtime_error.
class SoakWorld {
public:
    // Starts everything. `folder` is empty, and stays the caller's.
    explicit SoakWorld(std::filesystem::path folder);
    SoakWorld(const SoakWorld&) = delete;
    SoakWorld& operator=(const SoakWorld&) = delete;

    // Ends the service by a signal or a kill, in turn, and starts it on new packages. What it has used so far is
    // forgotten.
    void RestartService();

    // The same for the second host. The first one stays.
    void RestartGuest();

    // Looks at what service and first host use now.
    void Measure();

    // Ends everything well.
    void End();

    // What is not as it should be; empty when all is well. After End.
    std::vector<std::string> Findings() const;

    // Lines of figures.
    std::string Figures() const;

private:
    struct Program {
        std::unique_ptr<base::ChildProcess> process;
        std::filesystem::path rows;  // of a host: the file that tells how many there have been
        bool nextIsKilled = false;
    };

    void WriteCatalogue();
    std::unique_ptr<base::ChildProcess> Start(std::vector<std::string> command, const std::string& log) const;
    void StartService();
    void StartHost(Program& host, const std::string& name);
    void EndOrKill(Program& program, const std::string& name);
    void EndWell(Program& program, const std::string& name);
    std::uint64_t CountLogged(const std::string& text) const;

    const std::filesystem::path m_folder;
    Program m_service;
    Program m_host;
    Program m_guest;
    int m_services = 0;  // started so far
    int m_hosts = 0;
    UsageRecord m_serviceUsage;  // of the present one
    UsageRecord m_hostUsage;
    std::uint64_t m_rows = 0;  // of the first host so far
    std::vector<std::uint64_t> m_rowsMeasured;
};

}  // namespace soak
