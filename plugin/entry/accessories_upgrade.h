#pragma once

#include "duilib/container.h"
#include "duilib/notify_pump.h"
#include "duilib/paint_manager.h"

// The module's whole boundary towards the host: two functions and one class member. docs/host.md and
// docs/examples/minimal_host.cpp show their use. What is exported, and under which names, each linker reads in a file
// of its own: exports.map, exports_mingw.def, exports_msvc.def.

// Creates the accessory page inside `parent`. The host calls it once when it shows the page, on its UI thread and under
// the UI turn. Nothing is owned, and everything must outlive the page. With any argument null the module listens to the
// update service and shows nothing. A second call without CloseWnd between leaves the first page alive and unreachable.
extern "C" void CreateSetting(DuiLib::CPaintManagerUI* paintManager, DuiLib::CNotifyPump* notifyPump,
                              DuiLib::CContainerUI* parent);

// Destroys the page that was created last; does nothing when there is none. On the UI thread and under the UI turn. No
// message reaches the page afterwards. Blocks, with the turn given up, until a message that the page is working on is
// through: a list takes 100 ms a row, the end of an update 2 s. Its controls stay in `parent`: the host must discard
// them in the same turn, before it handles any further event, because they would still call the page. Exported under
// the compiler's decorated name.
void CloseWnd();

// A handle of one pointer-sized value, which hosts copy.
class AccessoriesUpgradeImp {
public:
    AccessoriesUpgradeImp& operator=(const AccessoriesUpgradeImp& other);

    void* value;
};
