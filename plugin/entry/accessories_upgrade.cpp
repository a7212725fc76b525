#include "entry/accessories_upgrade.h"

#include <new>

#include "support/log_line.h"
#include "update_list/accessories_update_wnd.h"

static_assert(sizeof(AccessoriesUpgradeImp) == sizeof(void*));

namespace {

// The only place that holds the window.
DuiLib::AccessoriesUpdateWnd*& InstanceSlot() {
    static DuiLib::AccessoriesUpdateWnd* window = nullptr;
    return window;
}

}  // namespace

namespace AccessSetting {

void CreateSetting(DuiLib::CPaintManagerUI* paintManager, DuiLib::CNotifyPump* notifyPump,
                   DuiLib::CContainerUI* parent) {
    LogLine(kLogEvent) << "init access";
    auto* const window = new (std::nothrow) DuiLib::AccessoriesUpdateWnd;
    InstanceSlot() = window;  // whatever it held: the host pairs its calls
    if (window != nullptr) window->InitItemLayout(paintManager, notifyPump, parent);
}

}  // namespace AccessSetting

void CreateSetting(DuiLib::CPaintManagerUI* paintManager, DuiLib::CNotifyPump* notifyPump,
                   DuiLib::CContainerUI* parent) {
    LogLine(kLogEvent) << "init access";  // written again by AccessSetting::CreateSetting, on purpose
    AccessSetting::CreateSetting(paintManager, notifyPump, parent);
}

void CloseWnd() {
    DuiLib::AccessoriesUpdateWnd*& window = InstanceSlot();
    if (window == nullptr) return;
    delete window;
    window = nullptr;
}

AccessoriesUpgradeImp& AccessoriesUpgradeImp::operator=(const AccessoriesUpgradeImp& other) {
    value = other.value;
    return *this;
}
