#pragma once

#include <functional>
#include <string>

#include "child_programs.h"
#include "host_channel.h"
#include "page_window.h"
#include "script.h"

namespace settings_host {

// Carries out script commands on the host's window. UI thread; takes the UI turn itself.
class ScriptRunner {
public:
    // `idle` is called again and again while a command waits.
    ScriptRunner(PageWindow& window, HostChannel& channel, std::function<void()> idle)
        : m_window(window), m_channel(channel), m_idle(std::move(idle)) {}

    // Until the script's end. Throws script::Error.
    void Run(script::Reader& reader);

private:
    void Do(const script::Click& click);
    void Do(const script::Wait& wait);
    void Do(const script::Start& start) { m_programs.Start(start.program); }
    void Do(const script::Stop& stop) { m_programs.Stop(stop.program); }
    void Do(const script::Words& words);
    void Do(const script::Close&) { m_window.Close(); }
    void Do(const script::Open&) { m_window.Open(); }

    bool Holds(const script::Wait& wait);
    std::string Seen(const script::Wait& wait);

    PageWindow& m_window;
    HostChannel& m_channel;
    std::function<void()> m_idle;
    ChildPrograms m_programs;
};

}  // namespace settings_host
