#include "script_runner.h"

#include <chrono>
#include <cstdint>
#include <thread>

#include "base/file.h"
#include "base/mutex.h"
#include "base/reason.h"
#include "base/text.h"
#include "channel/messages.h"
#include "host_output.h"
#include "ipc_client/ipc_diagnostics.h"
#include "kernel/sleep.h"
#include "kernel/ui_turn.h"

namespace settings_host {

namespace {

using std::chrono::steady_clock;

constexpr auto kPatience = std::chrono::seconds(3);

class PageWaits {
public:
    void SetPercent(unsigned percent) {
        const base::MutexLock lock(m_mutex);
        m_percent = percent;
        m_changed.NotifyAll();
    }

    void Wait(std::uint32_t milliseconds) {
        const steady_clock::time_point begin = steady_clock::now();
        const base::MutexLock lock(m_mutex);
        for (;;) {
            const auto end = begin + std::chrono::microseconds(std::uint64_t{10} * m_percent * milliseconds);
            if (steady_clock::now() >= end) return;
            m_changed.WaitUntil(m_mutex, end);
        }
    }

private:
    base::Mutex m_mutex;
    base::Condition m_changed;
    unsigned m_percent BASE_GUARDED_BY(m_mutex) = 100;
};

// Never destroyed: page code may wait while the process exits.
PageWaits& Waits() {
    static PageWaits& waits = *new PageWaits;
    return waits;
}

bool IsPercentageFrom(const DuiLib::CDuiString& text, int least) {
    for (int percent = least; percent <= 100; ++percent) {
        if (text == DuiLib::UICulture::GetInstance()->GetPercentString(percent)) return true;
    }
    return false;
}

std::string TextFor(const script::Wait& wait, DuiLib::CControlUI& control) {
    return base::Utf8FromWide(wait.condition == "tooltip" ? control.GetToolTip() : control.GetText());
}

std::string Description(const script::Wait& wait) {
    std::string text = wait.condition;
    if (!wait.control.empty()) text += " " + wait.control;
    if (wait.condition == "text" || wait.condition == "tooltip") return text + " \"" + wait.text + "\"";
    const bool number = wait.condition == "percent" || wait.condition == "height" || wait.condition == "running";
    return number ? text + " " + std::to_string(wait.number) : text;
}

}  // namespace

void SetWaitPercent(unsigned percent) {
    Waits().SetPercent(percent);
    kernel::SetSleeper([](std::uint32_t milliseconds) { Waits().Wait(milliseconds); });
}

void ScriptRunner::Run(script::Reader& reader) {
    script::Command command;
    while (reader.Next(command)) {
        try {
            std::visit([this](const auto& what) { Do(what); }, command);
        } catch (const std::exception& error) {
            throw script::Error(reader.File(), reader.Line(), base::Reason(error));
        }
    }
}

// Until it works: a row may not be laid out yet.
void ScriptRunner::Try(const std::string& what, const std::function<std::string()>& attempt) {
    const auto end = steady_clock::now() + kPatience;
    std::string fault = attempt();
    while (!fault.empty() && steady_clock::now() < end) {
        m_around.idle();
        fault = attempt();
    }
    if (!fault.empty()) throw std::runtime_error(what + ": " + fault);
}

void ScriptRunner::Do(const script::Click& click) {
    WriteTranscript("> click " + click.control);
    Try("click " + click.control, [&] { return m_window.Click(base::WideFromUtf8(click.control)); });
}

void ScriptRunner::Do(const script::Hover& hover) {
    Try("hover " + hover.control, [&] { return m_window.Hover(base::WideFromUtf8(hover.control)); });
}

void ScriptRunner::Do(const script::Where& where) {
    m_around.idle();
    const kernel::UiTurn turn;
    DuiLib::CControlUI* const control = m_window.Find(base::WideFromUtf8(where.control));
    if (control == nullptr) throw std::runtime_error("where " + where.control + ": no control has that name");
    const DuiLib::CDuiRect place = control->GetPos();
    const DuiLib::CDuiPoint origin = m_around.origin();
    std::string line = "where " + where.control;
    for (const int number : {origin.x + place.left, origin.y + place.top, place.Width(), place.Height()}) {
        line += " " + std::to_string(number);
    }
    WriteTranscript(line);
}

void ScriptRunner::Do(const script::Picture& picture) {
    const std::filesystem::path file = m_around.pictures / base::PathFromUtf8(picture.file);
    std::error_code error;  // what cannot be made shows when the picture is saved
    std::filesystem::create_directories(m_around.pictures, error);
    m_around.takePicture(file);
}

// Another thread asks for the turn while this one has it, and so gets it as soon as CloseWnd waits for page code.
void ScriptRunner::Do(const script::Close& close) {
    std::jthread setter;
    const kernel::UiTurn turn;
    if (close.waits) {
        setter = std::jthread([percent = static_cast<unsigned>(*close.waits)] {
            const kernel::UiTurn granted;
            SetWaitPercent(percent);
        });
    }
    m_window.Close();
}

void ScriptRunner::Do(const script::Words& words) { WriteTranscript("# " + words.text); }

void ScriptRunner::Do(const script::Wait& wait) {
    const auto end = steady_clock::now() + wait.limit;
    while (!Holds(wait)) {
        if (steady_clock::now() >= end) {
            throw std::runtime_error("wait " + Description(wait) + ": not within " +
                                     std::to_string(wait.limit.count()) + " s; " + Seen(wait));
        }
        m_around.idle();
    }
}

bool ScriptRunner::Holds(const script::Wait& wait) {
    const std::string& what = wait.condition;
    if (what == "connected") return IsPipeConnected(IPC_PIPE_ASSISTANT);
    if (what == "disconnected") return !IsPipeConnected(IPC_PIPE_ASSISTANT);
    const kernel::UiTurn turn;
    const PageNews& news = m_channel.News();
    if (what == "nothing-left") return news.nothingLeft;
    if (what == "running") return static_cast<int>(news.running.size()) == wait.number;
    if (what == "height") return news.heightReported && news.contentHeight == wait.number;
    DuiLib::CControlUI* const control = m_window.Find(base::WideFromUtf8(wait.control));
    const bool shown = control != nullptr && IsShown(control);
    if (what == "shown") return shown;
    if (what == "hidden") return control != nullptr && !shown;
    if (control == nullptr) return false;
    if (what == "tip") return m_window.Manager().GetToolTipOwner() == control;
    if (what == "focus") return m_window.Manager().GetFocus() == control;
    if (what == "percent") return IsPercentageFrom(control->GetText(), wait.number);
    return TextFor(wait, *control) == wait.text;
}

std::string ScriptRunner::Seen(const script::Wait& wait) {
    const kernel::UiTurn turn;
    const PageNews& news = m_channel.News();
    if (wait.condition == "running") return std::to_string(news.running.size()) + " run";
    if (wait.condition == "height") return "it is " + std::to_string(news.contentHeight);
    if (wait.control.empty()) return "it is not so";
    DuiLib::CControlUI* const control = m_window.Find(base::WideFromUtf8(wait.control));
    if (control == nullptr) return "no control has that name";
    if (wait.condition == "shown") return "it is hidden";
    if (wait.condition == "hidden") return "it is shown";
    if (wait.condition == "tip") return "its tool tip is not seen";
    if (wait.condition == "focus") {
        DuiLib::CControlUI* const focused = m_window.Manager().GetFocus();
        return focused == nullptr ? "nothing has the focus"
                                  : "\"" + base::Utf8FromWide(focused->GetName()) + "\" has the focus";
    }
    return "it is \"" + TextFor(wait, *control) + "\"";
}

}  // namespace settings_host
