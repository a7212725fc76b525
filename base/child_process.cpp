#include "base/child_process.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <map>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "base/child_system.h"
#include "base/file.h"
#include "base/mutex.h"
#include "base/process.h"

namespace base {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = ChildStream::Kind;
using child_system::File;
using std::chrono::milliseconds;

constexpr milliseconds kLongestPause{20};  // between two looks for a child's end

std::vector<std::string> EnvironmentWith(const std::vector<std::pair<std::string, std::string>>& added) {
    std::map<std::string, std::string, decltype(&ComesBefore)> variables(ComesBefore);
    for (const std::string& variable : OwnEnvironment()) {
        const std::size_t end = std::min(variable.find('=', 1), variable.size());  // Windows has names such as "=C:"
        variables[variable.substr(0, end)] = variable.substr(end);
    }
    for (const auto& [name, value] : added) variables[name] = "=" + value;
    std::vector<std::string> all;
    for (const auto& [name, value] : variables) all.push_back(name + value);
    return all;
}

// The child's end of a stream; ours, of a pipe, goes to `ours`.
File OpenStream(const ChildStream& stream, std::size_t number, File& ours) {
    switch (stream.kind) {
        case Kind::kNothing:
            return child_system::OpenNothing();
        case Kind::kInherited:
            return child_system::CopyOfOwn(number);
        case Kind::kAsErrors:
            throw std::logic_error("only the output can go where the errors go");
        case Kind::kNewFile:
            try {
                return child_system::CreateNewFile(stream.file);
            } catch (const std::runtime_error& error) {
                throw std::runtime_error(Utf8FromPath(stream.file) + ": cannot be written: " + error.what());
            }
        case Kind::kPipe:
            break;
    }
    child_system::Pipe pipe = number == 0 ? child_system::MakeInputPipe() : child_system::MakeOutputPipe();
    ours = std::move(pipe.ours);
    return std::move(pipe.theirs);
}

// A quotation mark is written with a backslash before it, and backslashes before one are doubled.
std::string Quoted(const std::string& word) {
    if (!word.empty() && word.find_first_of(" \t\n\v\"") == word.npos) return word;
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char c : word) {
        if (c == '"') quoted.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    quoted.append(backslashes, '\\');
    return quoted + '"';
}

bool IsInterpretersText(const std::vector<std::string>& command, std::size_t index) {
    return index == 4 && command[0] == "cmd.exe" && command[2] == "/s" && command[3] == "/c";
}

}  // namespace

std::string Description(const ChildEnd& end) {
    if (end.signal != 0) return "signal " + std::to_string(end.signal);
    if (end.code < 0xC0000000) return "exit status " + std::to_string(end.code);
    static constexpr char kDigits[] = "0123456789ABCDEF";  // exceptions are known by these
    std::string text = "exception 0x";
    for (int shift = 28; shift >= 0; shift -= 4) text += kDigits[(end.code >> shift) & 15];
    return text;
}

// ---- Output

struct ChildOutput::State {
    explicit State(File ours) : file(std::move(ours)), reader([this] { ReadAll(); }) {}
    ~State() {
        stop = true;
        reader.join();
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    void ReadAll() {
        std::array<char, 4096> bytes;
        for (bool last = false; !last;) {
            const std::size_t size = child_system::Read(file, bytes.data(), bytes.size(), stop);
            last = size == 0;
            const MutexLock lock(mutex);
            text.append(bytes.data(), size);
            ended = last;
            changed.NotifyAll();
        }
    }

    const File file;
    std::atomic<bool> stop = false;
    Mutex mutex;
    Condition changed;
    std::string text BASE_GUARDED_BY(mutex);
    bool ended BASE_GUARDED_BY(mutex) = false;
    std::thread reader;  // last: it uses the rest
};

ChildOutput::ChildOutput(std::unique_ptr<State> state) : m_state(std::move(state)) {}

ChildOutput::~ChildOutput() = default;

bool ChildOutput::WaitForLine(std::string_view wanted, milliseconds limit) const {
    const auto end = Clock::now() + limit;
    State& state = *m_state;
    const MutexLock lock(state.mutex);
    std::size_t lookFrom = 0;
    for (bool inTime = true;; inTime = state.changed.WaitUntil(state.mutex, end)) {
        const std::size_t at = state.text.find(wanted, lookFrom);
        if (at != std::string::npos && state.text.find('\n', at + wanted.size()) != std::string::npos) return true;
        if (at == std::string::npos && state.text.size() > wanted.size()) lookFrom = state.text.size() - wanted.size();
        if (state.ended || !inTime) return false;
    }
}

bool ChildOutput::WaitForEnd(milliseconds limit) const {
    const auto end = Clock::now() + limit;
    const MutexLock lock(m_state->mutex);
    for (bool inTime = true; !m_state->ended && inTime;) inTime = m_state->changed.WaitUntil(m_state->mutex, end);
    return m_state->ended;
}

std::string ChildOutput::Text() const {
    const MutexLock lock(m_state->mutex);
    return m_state->text;
}

std::vector<std::string> ChildOutput::Lines() const {
    std::vector<std::string> lines;
    std::istringstream text(Text());
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

// ---- Process

struct ChildProcess::State {
    child_system::Started child;
    File input;
    std::unique_ptr<ChildOutput> output;
    std::unique_ptr<ChildOutput> errors;
    std::optional<ChildEnd> end;
};

ChildProcess::ChildProcess(const ChildSettings& settings) : m_state(std::make_unique<State>()) {
    File output;
    File errors;
    std::array<File, 3> streams;
    streams[0] = OpenStream(settings.input, 0, m_state->input);
    if (settings.output.kind != Kind::kAsErrors) streams[1] = OpenStream(settings.output, 1, output);
    streams[2] = OpenStream(settings.errors, 2, errors);
    try {
        m_state->child = child_system::Start(settings, EnvironmentWith(settings.environment), streams);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(settings.command.at(0) + ": cannot be started: " + error.what());
    }
    streams = {};
    const auto collect = [](File& file) {
        return file ? std::unique_ptr<ChildOutput>(
                          new ChildOutput(std::make_unique<ChildOutput::State>(std::move(file))))
                    : nullptr;
    };
    m_state->output = collect(output);
    m_state->errors = collect(errors);
}

ChildProcess::~ChildProcess() = default;
ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;
ChildProcess& ChildProcess::operator=(ChildProcess&&) noexcept = default;

int ChildProcess::Id() const { return m_state->child.id; }

bool ChildProcess::IsRunning() { return !WaitForEnd(milliseconds(0)); }

// Looks seldom at one that takes long.
std::optional<ChildEnd> ChildProcess::WaitForEnd(milliseconds limit, const std::stop_token& stop) {
    const auto begin = Clock::now();
    milliseconds pause(0);
    while (!m_state->end) {
        m_state->end = child_system::WaitForEnd(m_state->child, pause);
        const auto waited = std::chrono::floor<milliseconds>(Clock::now() - begin);
        if (waited >= limit || stop.stop_requested()) break;
        pause = std::min({std::max(pause * 2, milliseconds(1)), kLongestPause, limit - waited});
    }
    return m_state->end;
}

ChildEnd ChildProcess::WaitForEnd() { return *WaitForEnd(milliseconds::max()); }

void ChildProcess::Write(std::string_view text) {
    while (!text.empty() && m_state->input) {
        const std::size_t written = child_system::Write(m_state->input, text);
        if (written == 0) return;
        text.remove_prefix(written);
    }
}

void ChildProcess::CloseInput() { m_state->input.Close(); }

const ChildOutput& ChildProcess::Output() const { return *m_state->output; }
const ChildOutput& ChildProcess::Errors() const { return *m_state->errors; }

void ChildProcess::AskToEnd() {
    if (!m_state->end && !child_system::AskToEnd(m_state->child)) CloseInput();
}

ChildEnd ChildProcess::Kill() {
    if (!m_state->end) child_system::Kill(m_state->child);
    return WaitForEnd();
}

std::string child_system::WindowsCommandLine(const std::vector<std::string>& command) {
    std::string line;
    for (std::size_t i = 0; i < command.size(); ++i) {
        if (i != 0) line += ' ';
        if (IsInterpretersText(command, i)) return line + '"' + command[i] + '"';
        line += Quoted(command[i]);
    }
    return line;
}

}  // namespace base
