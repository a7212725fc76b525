#pragma once

#include <filesystem>

#include "duilib/container.h"
#include "duilib/notify_pump.h"
#include "duilib/paint_manager.h"

// The accessory page's module, loaded by path, with the two functions that a host calls (docs/host.md). It stays loaded
// until the process ends, as its rows live that long, unless the host is done with it and says so.
class PageModule {
public:
    // Throws std::runtime_error, naming the path and the system's reason, when the module cannot be loaded or lacks one
    // of the functions.
    explicit PageModule(const std::filesystem::path& file);

    // Both on the UI thread and under the UI turn.
    void CreateSetting(DuiLib::CPaintManagerUI* paintManager, DuiLib::CNotifyPump* notifyPump,
                       DuiLib::CContainerUI* parent) const {
        m_create(paintManager, notifyPump, parent);
    }
    void CloseWnd() const { m_close(); }

    // Takes the module out of the process, once for each object; false when it stays because somebody else has loaded
    // it too. Nothing of it may be called any more. Before: CloseWnd, then the page's controls and the pump that it was
    // given are gone. What the rows hold stays behind (docs/deliberate-behaviour.md). Any thread.
    bool Unload();

    // Where a build or a package has the module, seen from the running program.
    static std::filesystem::path DefaultPath();

private:
    using CreateFunction = void (*)(DuiLib::CPaintManagerUI*, DuiLib::CNotifyPump*, DuiLib::CContainerUI*);
    using CloseFunction = void (*)();

    const std::filesystem::path m_file;
    void* m_library = nullptr;  // loaded until Unload
    CreateFunction m_create = nullptr;
    CloseFunction m_close = nullptr;
};
