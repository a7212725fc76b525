#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "child_programs.h"
#include "host_channel.h"
#include "script.h"
#include "settings_window.h"

namespace settings_host {

// How long the page's own waits last (100 ms after a row was added, 2 s of a row that has ended), in percent of what it
// asks for; 100 until this is called. Waits that run are lengthened or shortened, too. Any thread.
void SetWaitPercent(unsigned percent);

// Carries out script commands on the host's window. UI thread; takes the UI turn itself.
class ScriptRunner {
public:
    struct Surroundings {
        std::function<void()> idle;                 // called again and again while a command waits
        std::function<DuiLib::CDuiPoint()> origin;  // [device px] of the window's content on the desktop
        std::function<void(const std::filesystem::path&)> takePicture;
        std::filesystem::path pictures;  // folder for pictures
    };
    ScriptRunner(SettingsWindow& window, HostChannel& channel, Surroundings surroundings)
        : m_window(window), m_channel(channel), m_around(std::move(surroundings)) {}

    // Until the script's end. Throws script::Error.
    void Run(script::Reader& reader);

private:
    void Do(const script::Click& click);
    void Do(const script::Hover& hover);
    void Do(const script::Where& where);
    void Do(const script::Picture& picture);
    void Do(const script::Wait& wait);
    void Do(const script::Waits& waits) { SetWaitPercent(static_cast<unsigned>(waits.percent)); }
    void Do(const script::Start& start) { m_programs.Start(start.program); }
    void Do(const script::Stop& stop) { m_programs.Stop(stop.program); }
    void Do(const script::Words& words);
    void Do(const script::Close& close);
    void Do(const script::Open&) { m_window.Open(); }

    void Try(const std::string& what, const std::function<std::string()>& attempt);
    bool Holds(const script::Wait& wait);
    std::string Seen(const script::Wait& wait);

    SettingsWindow& m_window;
    HostChannel& m_channel;
    const Surroundings m_around;
    ChildPrograms m_programs;
};

}  // namespace settings_host
