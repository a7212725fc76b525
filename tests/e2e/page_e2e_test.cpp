#include "page_e2e_test.h"

#include <signal.h>

#include <algorithm>
#include <sstream>

#include "sha256.h"

namespace e2e {

using test_process::Process;

namespace {

constexpr const char* kFault = "standard input:";  // begins what the host says of a command that went wrong

}  // namespace

Host::Host(const std::vector<std::string>& arguments, const std::map<std::string, std::string>& environment)
    : m_process(SETTINGS_HOST_PROGRAM, arguments, environment) {}

// Empty when the host does not carry them out.
std::string Host::Answer(const std::string& lines) {
    const std::size_t before = Transcript().size();
    const std::string end = "played " + std::to_string(++m_played);
    m_process.Write(lines + "\nsay " + end + "\n");
    return m_process.Output().WaitFor("# " + end) ? Transcript().substr(before) : std::string();
}

// A command that comes on standard input and goes wrong is told in the transcript, and the next one is carried out.
bool Host::Play(const std::string& lines) {
    const std::string answer = Answer(lines);
    if (!answer.empty() && answer.find(kFault) == std::string::npos) return true;
    ADD_FAILURE() << "the host did not play\n"
                  << lines << "\nits transcript:\n"
                  << Transcript() << "its log:\n"
                  << Log();
    return false;
}

bool Host::Holds(const std::string& condition) {
    const std::string answer = Answer("wait " + condition + " within 0");
    return !answer.empty() && answer.find(kFault) == std::string::npos;
}

Place Host::Where(const std::string& control) {
    const std::string begin = "where " + control;
    const std::string answer = Answer(begin);
    Place place;
    std::istringstream numbers(answer.substr(std::min(answer.size(), answer.find(begin + " ") + begin.size())));
    numbers >> place.x >> place.y >> place.width >> place.height;
    if (!numbers) ADD_FAILURE() << begin << ": " << answer << Log();
    return numbers ? place : Place{};
}

void Host::End() {
    m_process.CloseInput();
    EXPECT_EQ(m_process.WaitForEnd(), 0) << Transcript() << Log();
}

std::string WaitForRows(int rows, const std::string& lastKey) {
    constexpr int kReported = 77;  // [design px] a row's height as the page first reports it
    return "wait height " + std::to_string(rows * kReported) +
           " within 60\nwait shown accessoriesView\nwait hidden " +  // it is hidden in a view that is, too
           lastKey + "devInfo\n";
}

PageE2ETest::PageE2ETest() {
    const auto pipes = m_folder / "pipes";
    std::filesystem::create_directory(pipes);
    std::filesystem::permissions(pipes, std::filesystem::perms::owner_all);
}

PageE2ETest::~PageE2ETest() {
    if (m_service) StopService();
}

std::string PageE2ETest::PackageContent(const std::string& key, std::size_t size) const {
    return key + test_support::Bytes(size - key.size());
}

void PageE2ETest::AddAccessory(const std::string& key, std::size_t packageSize, const std::string& installer) {
    WriteFile(PackageSource(key), PackageContent(key, packageSize));
    m_entries.push_back({{"deviceKey", key},
                         {"modelId", "IDS_NAME_PEN"},
                         {"image", "drawable/Brindle/pen.svg"},
                         {"version", "2." + std::to_string(m_entries.size())},
                         {"description", {"Steadier.", "Lighter."}},
                         {"driver", true},
                         {"package", PackageSource(key).filename().string()},
                         {"sha256", *update_service::Sha256OfFile(PackageSource(key))},
                         {"installer", installer}});
    WriteFile(m_folder / "catalogue.json", nlohmann::ordered_json{{"accessories", m_entries}}.dump());
}

std::map<std::string, std::string> PageE2ETest::Environment() const {
    return {{"BRINDLE_PIPE_DIR", (m_folder / "pipes").string()}};
}

std::map<std::string, std::string> PageE2ETest::HostEnvironment() const {
    auto environment = Environment();
    environment["LC_ALL"] = "C.UTF-8";
    return environment;
}

void PageE2ETest::StartService(std::vector<std::string> options, std::filesystem::path catalogue) {
    if (catalogue.empty()) catalogue = m_folder / "catalogue.json";
    options.insert(options.end(), {"--catalogue", catalogue.string(), "--work-dir", (m_folder / "work").string()});
    m_service = std::make_unique<Process>(UPDATE_SERVICE_PROGRAM, options, Environment());
}

void PageE2ETest::KillService() {
    m_service->Kill();
    EXPECT_EQ(m_service->WaitForEnd(), -SIGKILL);
    m_service.reset();
}

void PageE2ETest::StopService() {
    m_service->AskToEnd();
    EXPECT_EQ(m_service->WaitForEnd(), 0) << ServiceLog();
    m_service.reset();
}

std::unique_ptr<Host> PageE2ETest::StartHost(std::vector<std::string> options,
                                             const std::map<std::string, std::string>& environment) const {
    options.insert(options.begin(), {"--headless", "--script", "-", "--wait-percent", "1"});
    auto all = environment;
    all.merge(HostEnvironment());
    return std::make_unique<Host>(options, all);
}

std::map<std::string, std::string> PageE2ETest::WindowEnvironment(const std::string& display) const {
    auto environment = HostEnvironment();
    environment["DISPLAY"] = display;
    environment["SDL_VIDEODRIVER"] = "x11";
    environment["LANG"] = "C.UTF-8";
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (m_folder / "no_bus").string();  // nobody's desktop
    return environment;
}

std::unique_ptr<Host> PageE2ETest::StartHostInWindow(const std::string& display, std::vector<std::string> options,
                                                     const std::map<std::string, std::string>& environment) const {
    options.insert(options.begin(), {"--language", "en-US", "--script", "-", "--wait-percent", "1"});
    auto all = environment;
    all.merge(WindowEnvironment(display));
    return std::make_unique<Host>(options, all);
}

}  // namespace e2e
