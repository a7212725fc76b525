#include "script_runner.h"

#include <chrono>
#include <cstdlib>

#include "ipc/channel.h"
#include "ipc_client/ipc_connection_state.h"
#include "kernel/ui_turn.h"
#include "transcript.h"
#include "utf8.h"

namespace settings_host {

namespace {

constexpr auto kClickPatience = std::chrono::seconds(3);  // a row may not be laid out yet

bool IsPercentageFrom(const std::string& text, int least) {
    char* end = nullptr;
    const long percent = std::strtol(text.c_str(), &end, 10);
    return end != text.c_str() && *end == '%' && percent >= least;
}

std::string TextFor(const script::Wait& wait, DuiLib::CControlUI& control) {
    return ToUtf8(wait.condition == "tooltip" ? control.GetToolTip() : control.GetText());
}

std::string Description(const script::Wait& wait) {
    std::string text = wait.condition;
    if (!wait.control.empty()) text += " " + wait.control;
    if (wait.condition == "text" || wait.condition == "tooltip") return text + " \"" + wait.text + "\"";
    const bool number = wait.condition == "percent" || wait.condition == "height" || wait.condition == "running";
    return number ? text + " " + std::to_string(wait.number) : text;
}

}  // namespace

void ScriptRunner::Run(script::Reader& reader) {
    script::Command command;
    while (reader.Next(command)) {
        try {
            std::visit([this](const auto& what) { Do(what); }, command);
        } catch (const std::exception& error) {
            throw script::Error(reader.File(), reader.Line(), error.what());
        }
    }
}

void ScriptRunner::Do(const script::Click& click) {
    Say("> click " + click.control);
    const auto end = std::chrono::steady_clock::now() + kClickPatience;
    std::string fault = m_window.Click(FromUtf8(click.control));
    while (!fault.empty() && std::chrono::steady_clock::now() < end) {
        m_idle();
        fault = m_window.Click(FromUtf8(click.control));
    }
    if (!fault.empty()) throw std::runtime_error("click " + click.control + ": " + fault);
}

void ScriptRunner::Do(const script::Words& words) { Say("# " + words.text); }

void ScriptRunner::Do(const script::Wait& wait) {
    const auto end = std::chrono::steady_clock::now() + wait.limit;
    while (!Holds(wait)) {
        if (std::chrono::steady_clock::now() >= end) {
            throw std::runtime_error("wait " + Description(wait) + ": not within " +
                                     std::to_string(wait.limit.count()) + " s; " + Seen(wait));
        }
        m_idle();
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
    DuiLib::CControlUI* const control = m_window.Find(FromUtf8(wait.control));
    const bool shown = control != nullptr && IsShown(control);
    if (what == "shown") return shown;
    if (what == "hidden") return control != nullptr && !shown;
    if (control == nullptr) return false;
    const std::string text = TextFor(wait, *control);
    return what == "percent" ? IsPercentageFrom(text, wait.number) : text == wait.text;
}

std::string ScriptRunner::Seen(const script::Wait& wait) {
    const kernel::UiTurn turn;
    const PageNews& news = m_channel.News();
    if (wait.condition == "running") return std::to_string(news.running.size()) + " run";
    if (wait.condition == "height") return "it is " + std::to_string(news.contentHeight);
    if (wait.control.empty()) return "it is not so";
    DuiLib::CControlUI* const control = m_window.Find(FromUtf8(wait.control));
    if (control == nullptr) return "no control has that name";
    if (wait.condition == "shown") return "it is hidden";
    if (wait.condition == "hidden") return "it is shown";
    return "it is \"" + TextFor(wait, *control) + "\"";
}

}  // namespace settings_host
