#pragma once

#include <cstdint>
#include <string>

#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/notify_pump.h"

namespace DuiLib {

// Adds the controls of a window, a row's or the page's, to its place and leads their notifications to it through the
// host's pump, under the decimal digits of its address. Returns that name. UI turn.
inline std::wstring AddToPage(CNotifyPump* window, CControlUI* root, CNotifyPump* host, CContainerUI* place) {
    const std::wstring name = std::to_wstring(reinterpret_cast<std::uintptr_t>(window));
    host->AddVirtualWnd(name, window);
    root->SetVirtualWnd(name);
    place->Add(root);
    return name;
}

}  // namespace DuiLib
