#include "child_programs.h"

#include <stdexcept>

#include "base/file.h"

namespace settings_host {

namespace {

using Kind = base::ChildStream::Kind;

// For a program to end by itself: the update service waits ten seconds for an installer.
constexpr std::chrono::seconds kPatience{15};

void End(base::ChildProcess& program) {
    program.AskToEnd();
    if (!program.WaitForEnd(kPatience)) program.Kill();
}

}  // namespace

ChildPrograms::~ChildPrograms() {
    for (auto& [name, program] : m_running) End(program);
}

void ChildPrograms::Start(const std::string& program, const std::vector<std::string>& arguments,
                          const std::filesystem::path& output) {
    if (m_running.contains(program)) throw std::runtime_error(program + " runs already");
    base::ChildSettings settings;
    settings.command = {base::Utf8FromPath(base::ProgramFolder() / base::PathFromUtf8(program))};
    settings.command.insert(settings.command.end(), arguments.begin(), arguments.end());
    settings.input = {Kind::kPipe};
    settings.output = {output.empty() ? Kind::kNothing : Kind::kAsErrors};
    if (!output.empty()) settings.errors = {Kind::kNewFile, output};
    settings.endsWithThisProcess = true;
    m_running.emplace(program, settings);
}

void ChildPrograms::Stop(const std::string& program) {
    const auto found = m_running.find(program);
    if (found == m_running.end()) throw std::runtime_error(program + " was not started by the script");
    End(found->second);
    m_running.erase(found);
}

bool ChildPrograms::Runs(const std::string& program) {
    const auto found = m_running.find(program);
    return found != m_running.end() && found->second.IsRunning();
}

}  // namespace settings_host
