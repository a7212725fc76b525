#pragma once

#include <filesystem>

#include "duilib/container.h"
#include "duilib/notify_pump.h"
#include "duilib/paint_manager.h"

// The accessory page's module, loaded by path, with the two functions that a host calls (docs/host.md). It stays loaded
// until the process ends: its rows live that long.
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

    // Where a build or a package has the module, seen from the running program.
    static std::filesystem::path DefaultPath();

private:
    using CreateFunction = void (*)(DuiLib::CPaintManagerUI*, DuiLib::CNotifyPump*, DuiLib::CContainerUI*);
    using CloseFunction = void (*)();

    CreateFunction m_create = nullptr;
    CloseFunction m_close = nullptr;
};
