#pragma once

#include "duilib/container.h"
#include "duilib/notify_pump.h"
#include "duilib/paint_manager.h"

// The module's whole boundary towards the host: two functions and one class member. docs/host.md and
// docs/examples/minimal_host.cpp show their use.
#if defined(_MSC_VER)
#define ACCESSORIES_UPGRADE_API __declspec(dllexport)
#elif defined(_WIN32)
#define ACCESSORIES_UPGRADE_API  // exports.def has the names that the platform compiler would give
#else
#define ACCESSORIES_UPGRADE_API __attribute__((visibility("default")))
#endif

// Creates the accessory page inside `parent`. The host calls it once when it shows the page, on its UI thread and under
// the UI turn. Nothing is owned, and everything must outlive the page. With any argument null the module listens to the
// update service and shows nothing. A second call without CloseWnd between leaves the first page alive and unreachable.
extern "C" ACCESSORIES_UPGRADE_API void CreateSetting(DuiLib::CPaintManagerUI* paintManager,
                                                      DuiLib::CNotifyPump* notifyPump, DuiLib::CContainerUI* parent);

// Destroys the page that was created last; does nothing when there is none. On the UI thread and under the UI turn. No
// message reaches the page afterwards. Blocks, with the turn given up, until a message that the page is working on is
// through: a list takes 100 ms a row, the end of an update 2 s. Its controls stay in `parent`: the host must discard
// them in the same turn, before it handles any further event, because they would still call the page. Exported under
// the compiler's decorated name.
ACCESSORIES_UPGRADE_API void CloseWnd();

// A handle of one pointer-sized value, which hosts copy.
class AccessoriesUpgradeImp {
public:
    ACCESSORIES_UPGRADE_API AccessoriesUpgradeImp& operator=(const AccessoriesUpgradeImp& other);

    void* value;
};
