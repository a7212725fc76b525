#include "sample.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <deque>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "base/file.h"
#include "base/process.h"
#include "base/reason.h"
#include "host_output.h"

namespace settings_host {

namespace {

namespace fs = std::filesystem;

using base::Utf8FromPath;
using std::chrono::steady_clock;

constexpr const char* kService = "update_service";
constexpr const char* kReady = "[UpdateService]ready";  // in its log, once it serves
constexpr std::chrono::seconds kServicePatience{20};
constexpr std::chrono::milliseconds kLookAgain{10};
constexpr std::size_t kShownLines = 20;  // of the service's log

void ExpectFile(const fs::path& file) {
    errno = 0;
    const std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error(Utf8FromPath(file) +
                                 ": cannot be read: " + base::Reason(std::error_code(errno, std::generic_category())));
}

std::vector<fs::path> PackagesOf(const fs::path& sample) {
    const fs::path folder = sample / "packages";
    std::error_code error;
    std::vector<fs::path> packages;
    fs::directory_iterator file(folder, error);
    for (; !error && file != fs::directory_iterator(); file.increment(error)) packages.push_back(file->path());
    if (error) throw std::runtime_error(Utf8FromPath(folder) + ": cannot be read: " + base::Reason(error));
    std::sort(packages.begin(), packages.end());
    return packages;
}

bool AreSame(const fs::path& a, const fs::path& b) {
    std::ifstream first(a, std::ios::binary);
    std::ifstream second(b, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return first && second && std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
}

// The last lines of a file, without carriage returns.
std::deque<std::string> EndOf(const fs::path& file, std::size_t most) {
    std::ifstream stream(file, std::ios::binary);
    std::deque<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (line.ends_with('\r')) line.pop_back();
        lines.push_back(line);
        if (lines.size() > most) lines.pop_front();
    }
    return lines;
}

bool Holds(const fs::path& file, const std::string& text) {
    const auto lines = EndOf(file, kShownLines);
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

// A program that has just ended may hold files for a moment.
void Remove(const fs::path& folder) {
    const auto end = steady_clock::now() + std::chrono::seconds(2);
    std::error_code error;
    for (fs::remove_all(folder, error); error && steady_clock::now() < end; fs::remove_all(folder, error)) {
        std::this_thread::sleep_for(kLookAgain);
    }
    if (error)
        std::cerr << "settings_host: " << Utf8FromPath(folder) << ": cannot be removed: " << base::Reason(error)
                  << std::endl;
}

// Reports what is missing before there is a work folder.
fs::path CheckedFolder(const CommandLine& commandLine) {
    fs::path folder = fs::absolute(commandLine.sample).lexically_normal();
    ExpectFile(folder / "catalogue.json");
    if (commandLine.companions.empty()) ExpectFile(folder / "companions.json");
    if (commandLine.tour) {
        ExpectFile(folder / "tour.script");
        PackagesOf(folder);
    }
    return folder;
}

}  // namespace

Sample::Sample(CommandLine& commandLine)
    : m_folder(CheckedFolder(commandLine)),
      m_work(base::MakeTemporaryFolder("settings_host")),
      m_tour(commandLine.tour),
      m_pictures(commandLine.pictures) {
    const fs::path pipes = m_work / "pipe";
    fs::create_directory(pipes);
    fs::permissions(pipes, fs::perms::owner_all);
    base::SetVariable("BRINDLE_PIPE_DIR", Utf8FromPath(pipes));

    const auto fill = [](fs::path& choice, const fs::path& file) {
        if (choice.empty()) choice = file;
    };
    fill(commandLine.companions, m_folder / "companions.json");
    fill(commandLine.logFile, m_work / "host.log");
    fill(commandLine.reportFile, m_work / "reports.jsonl");
    commandLine.quietLog = true;
    if (!m_tour) return;
    commandLine.script = m_folder / "tour.script";
    commandLine.language = "en-US";  // the tour compares texts
    fill(commandLine.pictures, m_work / "pictures");
}

void Sample::StartService() {
    m_programs.Start(
        kService,
        {"--catalogue", Utf8FromPath(m_folder / "catalogue.json"), "--work-dir", Utf8FromPath(m_work / "updates"),
         "--rate", "1500000", "--fail", "dock-03:40", "--end-with-input"},
        ServiceLog());
    const auto end = steady_clock::now() + kServicePatience;
    while (!Holds(ServiceLog(), kReady)) {
        const bool runs = m_programs.Runs(kService);
        if (runs && steady_clock::now() < end) {
            std::this_thread::sleep_for(kLookAgain);
            continue;
        }
        const auto said = EndOf(ServiceLog(), 1);
        if (!said.empty()) throw std::runtime_error(said.front());
        throw std::runtime_error(std::string(kService) + (runs ? " does not serve" : " has ended") +
                                 " and says nothing");
    }
    m_began = true;
    if (!m_tour) WriteTranscript("Logs: " + Utf8FromPath(m_work));
}

void Sample::CheckTour(bool nothingIsLeft) const {
    std::string fault = nothingIsLeft ? "" : "the host was not told that nothing is left";
    for (const fs::path& package : PackagesOf(m_folder)) {
        const std::string name = Utf8FromPath(package.filename());
        if (AreSame(package, m_work / "updates" / package.filename())) {
            WriteTranscript("arrived whole: " + name);
        } else {
            fault += (fault.empty() ? "" : "; ") + name + " did not arrive whole";
        }
    }
    if (!fault.empty()) throw std::runtime_error(fault);
    WriteTranscript(m_pictures.empty() ? "The tour is complete."
                                       : "The tour is complete; its pictures are in " + Utf8FromPath(m_pictures) + ".");
}

void Sample::End(bool well) {
    if (m_programs.Runs(kService) || m_began) m_programs.Stop(kService);
    if (well || !m_began) {
        Remove(m_work);
        return;
    }
    std::cerr << "settings_host: the logs are in " << Utf8FromPath(m_work) << "; the update service's ends with:\n";
    for (const std::string& line : EndOf(ServiceLog(), kShownLines)) std::cerr << line << '\n';
    std::cerr << std::flush;
}

}  // namespace settings_host
