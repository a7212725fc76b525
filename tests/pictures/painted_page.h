#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "duilib/duilib.h"
#include "duilib/paint_surface.h"

// The built module's page, on the ground of the settings window, painted into memory, with the pointer and the keyboard
// of a test. Over the fake platform: nothing here waits, and the page does what it does within the call.
class PaintedPage {
public:
    // Creates the page, still without rows.
    PaintedPage();
    ~PaintedPage();
    PaintedPage(const PaintedPage&) = delete;
    PaintedPage& operator=(const PaintedPage&) = delete;

    // Makes the window as high as a page of its own needs it.
    void FitWindow();

    // A control that is missing fails the test.
    DuiLib::CControlUI& Control(std::wstring_view name);
    DuiLib::CPaintManagerUI& Manager() { return m_manager; }

    // At the middle of a control. Click goes away again; Press stays until Release, which clicks nothing.
    void PointAt(std::wstring_view name);
    void PointAway();
    void Click(std::wstring_view name);
    void Press(std::wstring_view name);
    void Release();
    void Focus(std::wstring_view name);
    void FocusNothing();

    // As long as a tool tip takes to show.
    void Rest();

    // The window's picture as it has become, painted where it changed, as a window on a screen is; valid until the next
    // call. The other is painted from nothing.
    const DuiLib::PaintSurface& Paint();
    DuiLib::PaintSurface PaintWhole();

private:
    DuiLib::CDuiPoint MiddleOf(std::wstring_view name);

    DuiLib::CNotifyPump m_pump;
    DuiLib::PaintSurface m_picture;
    DuiLib::CPaintManagerUI m_manager;
    DuiLib::CContainerUI* m_parent = nullptr;  // owned by the manager's tree
};

// Calls `look` while the page pauses for so long [ms] within `action`, and returns how often it did.
int LookDuringPause(std::uint32_t milliseconds, const std::function<void()>& action, const std::function<void()>& look);
