#include "host_program.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "base/file.h"
#include "base/reason.h"
#include "base/text.h"
#include "host_output.h"
#include "ipc_client/ipc_diagnostics.h"
#include "kernel/ui_turn.h"
#include "qx_logger/qx_logger.h"
#include "script.h"
#include "script_runner.h"

namespace settings_host {

namespace {

using base::Utf8FromPath;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kLookAgain{10};  // how often a page without a window, or a script's condition, is looked at
constexpr milliseconds kRest{500};      // without a change, the page has come to rest
constexpr std::chrono::seconds kListPatience{10};
constexpr std::chrono::seconds kNewsPatience{5};

base::Mutex programMutex;
HostProgram* program BASE_GUARDED_BY(programMutex) = nullptr;  // the running one, for signals
std::atomic<bool> stopAsked{false};

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);) lines.push_back(line);
    return lines;
}

std::string WindowTitle() {
    const kernel::UiTurn turn;
    return base::Utf8FromWide(DuiLib::UICulture::GetInstance()->GetString(L"IDS_HOST_WINDOW_TITLE"));
}

}  // namespace

HostProgram::HostProgram(const CommandLine& commandLine)
    : m_commandLine(commandLine),
      m_module(commandLine.module),
      m_inhibitor("Settings", [](const std::string& line) { WriteLog(LOG_LEVEL_EVENT, line); }),
      m_channel([this] { WakeUp(); }),
      m_window(m_module, m_channel, m_inhibitor) {
    if (!commandLine.headless) {
        m_native.emplace(m_window.Manager(), DuiLib::WindowOptions{.title = WindowTitle(),
                                                                   .size = SettingsWindow::kSize,
                                                                   .smallest = SettingsWindow::kSmallest,
                                                                   .scale = commandLine.scale});
        m_native->SetCloseHandler([this] { m_window.AskToClose(); });
    }
    SetPipeConnectionSink([this] { WakeUp(); });
    {
        const base::MutexLock lock(m_wakeMutex);
        m_awaiting = m_native ? &*m_native : nullptr;
    }
    const base::MutexLock lock(programMutex);
    program = this;
}

HostProgram::~HostProgram() {
    SetWaitPercent(m_commandLine.waitPercent);  // a script that lengthens waits does not keep the window
    {
        const base::MutexLock lock(programMutex);
        program = nullptr;
    }
    SetPipeConnectionSink({});
    const base::MutexLock lock(m_wakeMutex);
    m_awaiting = nullptr;
}

void HostProgram::AskToStop() {
    stopAsked = true;
    const base::MutexLock lock(programMutex);
    if (program) program->WakeUp();
}

bool HostProgram::NothingIsLeft() {
    const kernel::UiTurn turn;
    return m_channel.News().nothingLeft;
}

void HostProgram::WakeUp() {
    const base::MutexLock lock(m_wakeMutex);
    if (m_awaiting) m_awaiting->WakeUp();
}

void HostProgram::Run() {
    m_window.Open();
    PlayScript();
    if (!m_commandLine.screenshot.empty()) {
        Settle();
        TakePicture(m_commandLine.screenshot);
    } else if (m_commandLine.script.empty()) {
        for (;;) Step({});
    }
    WritePage();
}

// One turn of the loop: shows what is new, then waits for more, at most until `limit`.
void HostProgram::Step(std::optional<milliseconds> limit) {
    if (stopAsked) throw Ended{"stopped"};
    const steady_clock::time_point now = steady_clock::now();
    const auto next = m_window.ApplyNews(now);
    if (m_window.WantsToEnd()) throw Ended{};
    if (!m_native) {
        WritePage();
        m_window.Manager().Tick(now);
        std::this_thread::sleep_for(kLookAgain);
        return;
    }
    if (next) {
        const milliseconds left = std::max(milliseconds(0), std::chrono::ceil<milliseconds>(*next - now));
        limit = std::min(left, limit.value_or(left));
    }
    m_native->RunOnce(limit);
}

// Writes what has changed: the changed lines of a page that has as many as before, else the whole page.
void HostProgram::WritePage() {
    if (!m_commandLine.headless) return;
    m_window.ApplyNews(steady_clock::now());
    std::vector<std::string> lines;
    {
        const kernel::UiTurn turn;
        lines = Lines(m_window.PageText());
    }
    if (lines == m_written) return;
    const bool whole = lines.size() != m_written.size();
    if (whole) WriteTranscript(lines.empty() ? "page: (nothing is shown)" : "page:");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (whole || lines[i] != m_written[i]) WriteTranscript(lines[i]);
    }
    m_written = lines;
}

// ---- Scripts

void HostProgram::PlayScript() {
    if (m_commandLine.script.empty()) return;
    if (m_commandLine.script == "-") {
        script::Input input(0, [this] { Step(kLookAgain); });
        PlayFrom(input.Stream(), "standard input", true);
        return;
    }
    errno = 0;
    std::ifstream file(m_commandLine.script);
    if (!file) {
        throw std::runtime_error(Utf8FromPath(m_commandLine.script) + ": the script cannot be read: " +
                                 base::Reason(std::error_code(errno, std::generic_category())));
    }
    PlayFrom(file, Utf8FromPath(m_commandLine.script), false);
}

void HostProgram::PlayFrom(std::istream& input, const std::string& name, bool fromTerminal) {
    ScriptRunner runner(m_window, m_channel,
                        {.idle = [this] { Step(kLookAgain); },
                         .origin = [this] { return m_native ? m_native->GetOrigin() : DuiLib::CDuiPoint{}; },
                         .takePicture = [this](const std::filesystem::path& file) { TakePicture(file); },
                         .pictures = m_commandLine.pictures});
    script::Reader reader(input, name);
    for (bool ended = false; !ended;) {
        try {
            runner.Run(reader);
            ended = true;
        } catch (const script::Error& error) {
            if (!fromTerminal) throw;
            WriteTranscript(base::Reason(error));  // a person tries again
        }
    }
}

// ---- Pictures

// Until the page has shown its list, or there is none to come, and does not change any more.
void HostProgram::Settle() {
    const auto patience = steady_clock::now() + kListPatience;
    std::string before;
    auto since = steady_clock::now();
    for (;;) {
        Step(kLookAgain);
        const kernel::UiTurn turn;
        std::string text = m_window.PageText();
        const auto now = steady_clock::now();
        if (text != before) since = now;
        before = std::move(text);
        const bool shown = m_channel.News().heightReported || m_channel.News().nothingLeft;
        if ((shown || now >= patience) && now - since >= kRest) return;
    }
}

// Until the window shows all that the page has told by now: what stands in the page is there at once, while the height
// that it needs, and which updates run, come as messages.
void HostProgram::CatchUp() {
    const auto patience = steady_clock::now() + kNewsPatience;
    const auto hasCome = [this] {
        const kernel::UiTurn turn;
        return m_channel.MarkHasCome();
    };
    if (IsPipeConnected(IPC_PIPE_ASSISTANT)) {
        const kernel::UiTurn turn;
        m_channel.PostMark();
    }
    while (!hasCome() && IsPipeConnected(IPC_PIPE_ASSISTANT) && steady_clock::now() < patience) Step(kLookAgain);
    Step(kLookAgain);
}

void HostProgram::TakePicture(const std::filesystem::path& file) {
    CatchUp();
    m_window.SavePicture(file);
    WriteTranscript("picture: " + Utf8FromPath(file));
}

}  // namespace settings_host
