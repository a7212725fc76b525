#include "test_process.h"

#include "base/file.h"

namespace test_process {

namespace {

using Kind = base::ChildStream::Kind;

base::ChildSettings Settings(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                             const std::map<std::string, std::string>& environment) {
    base::ChildSettings settings;
    settings.command = {base::Utf8FromPath(program)};
    settings.command.insert(settings.command.end(), arguments.begin(), arguments.end());
    settings.environment.assign(environment.begin(), environment.end());
    settings.input = settings.output = settings.errors = {Kind::kPipe};
    return settings;
}

}  // namespace

Process::Process(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                 const std::map<std::string, std::string>& environment)
    : m_child(Settings(program, arguments, environment)) {}

Process::~Process() { m_child.Kill(); }

std::optional<int> Process::WaitForEnd(std::chrono::milliseconds patience) {
    const auto end = m_child.WaitForEnd(patience);
    if (!end) return std::nullopt;
    constexpr std::chrono::seconds kLastWords(2);
    m_child.Output().WaitForEnd(kLastWords);
    m_child.Errors().WaitForEnd(kLastWords);
    return end->signal != 0 ? -end->signal : static_cast<int>(end->code);
}

}  // namespace test_process
