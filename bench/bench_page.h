#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "channel/payload.h"
#include "duilib/duilib.h"
#include "update_list/accessories_update_wnd.h"

// A list window over the real platform and the real layouts, in a window model; nothing waits and nothing is written.
class BenchPage {
public:
    // In a window that shows it whole, or scrolls in one of that size [device px].
    explicit BenchPage(std::optional<DuiLib::CDuiSize> window = {});
    ~BenchPage();

    // Gives the page its list; under the UI turn.
    void Build(std::vector<AccessoryVersionDataInfo>& list);

    // Takes the page's controls out of the window, as a host does; under the UI turn.
    void Discard();

    DuiLib::AccessoriesUpdateWnd& Window() { return *m_window; }
    DuiLib::CPaintManagerUI& Manager() { return *m_manager; }

private:
    DuiLib::CNotifyPump m_pump;
    std::unique_ptr<DuiLib::CPaintManagerUI> m_manager = std::make_unique<DuiLib::CPaintManagerUI>();
    std::unique_ptr<DuiLib::AccessoriesUpdateWnd> m_window = std::make_unique<DuiLib::AccessoriesUpdateWnd>();
};

// Once a process: resources, texts and a silent logger. Throws when a resource is missing.
void SetUpBenchPlatform();

// `rows` accessories, each with its own key and two lines, the first of which was never measured before.
std::vector<AccessoryVersionDataInfo> BenchList(std::size_t rows);
