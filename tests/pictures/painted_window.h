#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

#include "duilib/duilib.h"
#include "duilib/paint_surface.h"
#include "host_channel.h"
#include "module_loader/page_module.h"
#include "settings_window.h"
#include "sleep_inhibitor.h"

// The settings host's own window with the built module's page in it, painted into memory. Over the fake platform: the
// page's messages to the host go the way that a service would send them, and time passes only where a test says so.
class PaintedWindow {
public:
    // Opens the page, still without rows.
    PaintedWindow();
    PaintedWindow(const PaintedWindow&) = delete;
    PaintedWindow& operator=(const PaintedWindow&) = delete;

    // What the host's loop does: it gets what the page has told since, and shows it.
    void ShowNews();
    void LetTimePass(std::chrono::milliseconds time);

    // As a user would, who then points and types elsewhere. What cannot be clicked fails the test.
    void Click(const std::string& name);
    void AskToClose();
    void Scroll(DuiLib::DuiKey key);

    // A control that is missing fails the test.
    DuiLib::CControlUI& Control(std::wstring_view name);

    // As it has become, painted where it changed; valid until the next call.
    const DuiLib::PaintSurface& Paint();

private:
    const PageModule m_module;
    settings_host::SleepInhibitor m_inhibitor{"Test"};
    settings_host::HostChannel m_channel{[] {}};
    settings_host::SettingsWindow m_window{m_module, m_channel, m_inhibitor};
    settings_host::SettingsWindow::TimePoint m_time{std::chrono::hours(1)};
    std::size_t m_handedOver = 0;  // of the seam's events
    DuiLib::PaintSurface m_picture;
};
