#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "duilib/export.h"
#include "duilib/geometry.h"

namespace DuiLib {

class CPaintManagerUI;
class NativeWindow;

struct WindowOptions {
    std::string title;              // UTF-8
    CDuiSize size{900, 640};        // [design px] of the content, at first
    CDuiSize smallest{640, 420};    // [design px]
    std::optional<unsigned> scale;  // [percent] nothing: the display's, also when the window moves to another one
};

// A window of the desktop that shows a paint manager's tree and hands it the input. It works only
// when something happened: between input and changes nothing runs. The thread that made it is the UI thread, which does
// all the rest.
class DUILIB_API CWindowWnd {
public:
    // Whether there is a desktop to open a window on; if not, says why.
    static bool HasDisplay(std::string& reason);

    // Opens the window. The manager must outlive it; its client size and the process's display scale follow the window.
    // Throws std::runtime_error with the system's reason.
    CWindowWnd(CPaintManagerUI& manager, const WindowOptions& options);
    ~CWindowWnd();
    CWindowWnd(const CWindowWnd&) = delete;
    CWindowWnd& operator=(const CWindowWnd&) = delete;

    // Paints what changed, waits for input, a change, or the end of `limit`, and handles the input that came. Holds the
    // UI turn while it works, not while it waits.
    void RunOnce(std::optional<std::chrono::milliseconds> limit);

    // Ends the wait of RunOnce, on whichever thread it is called.
    void WakeUp();

    // Called, under the UI turn, when the user asks to close the window, which stays open.
    void SetCloseHandler(std::function<void()> handler);

    void SetTitle(const std::string& title);  // UTF-8
    CDuiPoint GetOrigin() const;              // [device px] of the content's left top corner on the desktop

private:
    std::unique_ptr<NativeWindow> m_native;
};

}  // namespace DuiLib
