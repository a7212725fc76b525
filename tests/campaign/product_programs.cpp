#include "product_programs.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "base/file.h"
#include "sha256.h"

namespace campaign {

using base::Utf8FromPath;
using test_process::Process;

namespace {

constexpr char kSanitizer[] = "Sanitizer";
constexpr int kTerminate = 15;  // the signal; a program that has just been started does not hold it back yet

void ExpectGoodEnd(Process& process, const std::string& name, Tally& tally) {
    const std::optional<int> end = process.WaitForEnd();
    const std::string errors = process.Errors().Text();
    if (end == 0 && errors.find(kSanitizer) == std::string::npos) return;
    tally.Find(Wrong::kCrashed, name + ": " + (end ? std::to_string(*end) : "does not end") + "\n" + errors);
}

}  // namespace

std::filesystem::path MakePipeFolder(const std::filesystem::path& folder, const std::string& name) {
    std::filesystem::create_directory(folder / name);
    std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
    return folder / name;
}

void Service::AddAccessory(const std::string& key, std::size_t packageSize) {
    const std::filesystem::path package = m_folder / (key + ".source");
    std::ofstream(package, std::ios::binary) << key << std::string(packageSize, key.back());
    m_entries.push_back({{"deviceKey", key},
                         {"modelId", "IDS_NAME_PEN"},
                         {"image", "drawable/Brindle/pen.svg"},
                         {"version", "2." + std::to_string(m_entries.size())},
                         {"driver", true},
                         {"package", Utf8FromPath(package.filename())},
                         {"sha256", *update_service::Sha256OfFile(package)},
                         {"installer", "echo " + key + " >>installed"}});
    std::ofstream(m_folder / "catalogue.json") << nlohmann::ordered_json{{"accessories", m_entries}}.dump();
}

void Service::Start() {
    std::vector<std::string> arguments = m_options;
    arguments.insert(arguments.end(), {"--catalogue", Utf8FromPath(m_folder / "catalogue.json"), "--work-dir",
                                       Utf8FromPath(m_folder / "work")});
    m_process = std::make_unique<Process>(
        base::ProgramFolder() / "update_service", arguments,
        std::map<std::string, std::string>{{"BRINDLE_PIPE_DIR", Utf8FromPath(m_folder / kBrokerFolder)}});
}

void Service::Kill() {
    m_process->Kill();
    m_process->WaitForEnd();
    m_earlierLog = Log();
}

void Service::Stop(Tally& tally) {
    m_process->AskToEnd();
    const bool wasTooEarly = m_process->WaitForEnd() == -kTerminate && m_process->Errors().Text().empty();
    if (!wasTooEarly) ExpectGoodEnd(*m_process, "the service", tally);
    m_earlierLog = Log();
}

std::vector<std::string> Service::Installed() const {
    std::vector<std::string> keys;
    std::ifstream file(m_folder / "installed");
    for (std::string key; std::getline(file, key);) keys.push_back(key);
    return keys;
}

nlohmann::json Service::State() const {
    std::ifstream file(m_folder / "work" / "state.json");
    const nlohmann::json state = nlohmann::json::parse(file, nullptr, false);
    return state.is_object() ? state["devices"] : nlohmann::json::object();
}

Host::Host(const std::filesystem::path& folder)
    : m_process(base::ProgramFolder() / "settings_host",
                {"--headless", "--script", "-", "--wait-percent", "1", "--trace", "--language", "en-US"},
                {{"BRINDLE_PIPE_DIR", Utf8FromPath(folder / kHostFolder)}, {"LC_ALL", "C.UTF-8"}}) {}

bool Host::Play(const std::string& lines) {
    constexpr char kFault[] = "standard input:";  // begins what the host says of a command that went wrong
    const std::size_t before = Transcript().size();
    const std::string end = "played " + std::to_string(++m_played);
    m_process.Write(lines + "\nsay " + end + "\n");
    return m_process.Output().WaitFor("# " + end) && Transcript().find(kFault, before) == std::string::npos;
}

void Host::End(Tally& tally) {
    m_process.CloseInput();
    ExpectGoodEnd(m_process, "the host", tally);
}

}  // namespace campaign
