#include "soak_world.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "base/file.h"
#include "sha256.h"

namespace soak {

namespace {

constexpr std::size_t kPackage = 400000;  // [bytes]
constexpr const char* kRate = "200000";   // [bytes/s]
constexpr std::chrono::seconds kPatience{30};

// For 30 s the broker keeps what a process that was killed was to get; afterwards as much is forgotten as comes.
constexpr std::size_t kBrokerForgets = 35;  // [samples]

// What a row leaves behind on purpose (docs/deliberate-behaviour.md), its name in the host's pump included.
constexpr std::uint64_t kLeakOfARow = 2200;  // [bytes] as measured, rounded up

std::string ContentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

}  // namespace

SoakWorld::SoakWorld(std::filesystem::path folder) : m_folder(std::move(folder)) {
    std::filesystem::create_directory(m_folder / "pipes");
    std::filesystem::permissions(m_folder / "pipes", std::filesystem::perms::owner_all);
    StartService();
    StartHost(m_host, "host");
    StartHost(m_guest, "guest");
}

void SoakWorld::WriteCatalogue() {
    nlohmann::ordered_json entries = nlohmann::ordered_json::array();
    for (int device = 0; device < kDevices; ++device) {
        const std::string key = KeyOf(device);
        const std::filesystem::path package = m_folder / (key + ".source");
        const bool isNew = device >= kFailing;
        const std::string begin = key + (isNew ? std::to_string(m_services) : "");
        std::ofstream(package, std::ios::binary) << begin << std::string(kPackage - begin.size(), 'p');
        const std::string sha256 = *update_service::Sha256OfFile(package);
        if (device < kDamaged) std::fstream(package, std::ios::in | std::ios::out | std::ios::binary) << "damaged";
        entries.push_back({{"deviceKey", key},
                           {"modelId", "IDS_NAME_PEN"},
                           {"image", "drawable/Brindle/pen.svg"},
                           {"version", "1." + std::to_string(m_services)},
                           {"description", {"Steadier.", "Lighter."}},
                           {"driver", true},
                           {"package", base::Utf8FromPath(package.filename())},
                           {"sha256", sha256},
                           {"installer", device < kFailing ? "exit 1" : "exit 0"}});
    }
    std::ofstream(m_folder / "catalogue.json") << nlohmann::ordered_json{{"accessories", entries}}.dump();
}

std::unique_ptr<base::ChildProcess> SoakWorld::Start(std::vector<std::string> command, const std::string& log) const {
    using Kind = base::ChildStream::Kind;
    command.front() = base::Utf8FromPath(base::ProgramFolder() / command.front());
    base::ChildSettings settings;
    settings.command = std::move(command);
    settings.environment = {{"BRINDLE_PIPE_DIR", base::Utf8FromPath(m_folder / "pipes")}};
    settings.input = {Kind::kPipe};
    settings.output = {Kind::kNothing};
    settings.errors = {Kind::kNewFile, m_folder / log};
    return std::make_unique<base::ChildProcess>(settings);
}

void SoakWorld::StartService() {
    WriteCatalogue();
    m_service.process =
        Start({"update_service", "--end-with-input", "--rate", kRate, "--catalogue",
               base::Utf8FromPath(m_folder / "catalogue.json"), "--work-dir", base::Utf8FromPath(m_folder / "work")},
              "service-" + std::to_string(m_services++) + ".log");
    m_serviceUsage = UsageRecord(kBrokerForgets);
}

void SoakWorld::StartHost(Program& host, const std::string& name) {
    host.rows = m_folder / (name + ".rows");
    host.process = Start({"soak_page", base::Utf8FromPath(host.rows), std::to_string(++m_hosts)}, name + ".log");
}

void SoakWorld::EndWell(Program& program, const std::string& name) {
    program.process->CloseInput();
    const auto end = program.process->WaitForEnd(kPatience);
    if (!end) throw std::runtime_error(name + " does not end");
    if (!end->IsSuccess()) throw std::runtime_error(name + " ended with " + base::Description(*end));
}

void SoakWorld::EndOrKill(Program& program, const std::string& name) {
    if (!program.process->IsRunning()) throw std::runtime_error(name + " has ended by itself");
    if (program.nextIsKilled) {
        program.process->Kill();
    } else {
        EndWell(program, name);
    }
    program.nextIsKilled = !program.nextIsKilled;
}

void SoakWorld::RestartService() {
    EndOrKill(m_service, "the service");
    StartService();
}

void SoakWorld::RestartGuest() {
    EndOrKill(m_guest, "the second host");
    StartHost(m_guest, "guest");
}

void SoakWorld::Measure() {
    if (const std::string rows = ContentOf(m_host.rows); !rows.empty()) m_rows = std::stoull(rows);
    m_rowsMeasured.push_back(m_rows);
    m_serviceUsage.Add(test_support::UsageOf(m_service.process->Id()));
    m_hostUsage.Add(test_support::UsageOf(m_host.process->Id()), m_rows * kLeakOfARow);
}

void SoakWorld::End() {
    EndWell(m_guest, "the second host");
    EndWell(m_host, "the first host");
    EndWell(m_service, "the service");
}

std::uint64_t SoakWorld::CountLogged(const std::string& text) const {
    std::uint64_t count = 0;
    for (int service = 0; service < m_services; ++service) {
        std::ifstream log(m_folder / ("service-" + std::to_string(service) + ".log"));
        for (std::string line; std::getline(log, line);) count += line.find(text) != std::string::npos;
    }
    return count;
}

std::vector<std::string> SoakWorld::Findings() const {
    std::vector<std::string> findings;
    for (const std::string& finding : m_serviceUsage.Findings()) findings.push_back("service: " + finding);
    for (const std::string& finding : m_hostUsage.Findings()) findings.push_back("host: " + finding);
    const std::size_t third = m_rowsMeasured.size() / 3;
    if (third == 0 || m_rowsMeasured[2 * third] == m_rows) findings.push_back("no row was shown in the last third");
    if (CountLogged("installed version") < static_cast<std::uint64_t>(kDevices - kFailing))
        findings.push_back("too little was installed");
    if (CountLogged("is damaged") == 0) findings.push_back("no damaged package was fetched");
    return findings;
}

std::string SoakWorld::Figures() const {
    return "service: " + m_serviceUsage.Figures() + "\nhost:    " + m_hostUsage.Figures() + "; " +
           std::to_string(m_rows) + " rows\n" + std::to_string(m_services) + " services, " + std::to_string(m_hosts) +
           " hosts, " + std::to_string(CountLogged("installed version")) + " installed, " +
           std::to_string(CountLogged(": failed: ")) + " failed\n";
}

}  // namespace soak
