#include "firmware_item/row_controls.h"

#include <cstdint>
#include <limits>

#include "duilib/resource_manager.h"

namespace DuiLib {

std::wstring AddToPage(CNotifyPump* window, CControlUI* root, CNotifyPump* host, CContainerUI* place) {
    const std::wstring name = std::to_wstring(reinterpret_cast<std::uintptr_t>(window));
    host->AddVirtualWnd(name, window);
    root->SetVirtualWnd(name);
    place->Add(root);
    return name;
}

float ScaleDivisor() {
    const float scale = static_cast<float>(CResourceManager::GetInstance()->GetScale()) / 100.0f;
    return scale < 1.0f ? 100.0f : scale;
}

int Truncate(double value) {
    using Limits = std::numeric_limits<int>;
    const bool fits = value > Limits::min() - 1.0 && value < Limits::max() + 1.0;
    return fits ? static_cast<int>(value) : Limits::min();
}

}  // namespace DuiLib
