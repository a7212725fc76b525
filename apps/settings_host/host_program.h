#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "base/mutex.h"
#include "host_channel.h"
#include "module_loader/page_module.h"
#include "options.h"
#include "settings_window.h"
#include "sleep_inhibitor.h"

namespace settings_host {

// Thrown when the program is to end: the user closed the window, or a signal asked for it. No std::exception, so that
// no script takes it for a fault of its own.
struct Ended {
    std::string reason;  // empty when the user wanted it
};

// The host from its start to its end: the page's module, the window, shown on the desktop or written as text, and the
// script that plays on it. UI thread, except for what says otherwise.
class HostProgram {
public:
    // Opens the window. Throws std::runtime_error with what is missing.
    explicit HostProgram(const CommandLine& commandLine);
    ~HostProgram();

    // Returns when the script has ended, or throws Ended. Throws script::Error, and std::runtime_error for a picture
    // that cannot be written.
    void Run();

    // What the page said last.
    bool NothingIsLeft();

    // Ends the program soon. Any thread, also when there is no program.
    static void AskToStop();

private:
    void Step(std::optional<std::chrono::milliseconds> limit);
    void WritePage();
    void PlayScript();
    void PlayFrom(std::istream& input, const std::string& name, bool fromTerminal);
    void Settle();
    void CatchUp();
    void TakePicture(const std::filesystem::path& file);
    void WakeUp();

    const CommandLine m_commandLine;
    base::Mutex m_wakeMutex;
    DuiLib::CWindowWnd* m_awaiting BASE_GUARDED_BY(m_wakeMutex) = nullptr;  // who is woken by news
    const PageModule m_module;
    SleepInhibitor m_inhibitor;
    HostChannel m_channel;
    SettingsWindow m_window;
    std::optional<DuiLib::CWindowWnd> m_native;
    std::vector<std::string> m_written;  // the page's lines as written last
};

}  // namespace settings_host
