#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "duilib/geometry.h"
#include "duilib/shared_text.h"

namespace DuiLib {

// What only some controls have.
struct ControlExtras {
    SharedText toolTip;
    SharedText virtualWnd;
    std::vector<std::pair<SharedText, SharedText>> attributes;  // name and text, given by SetAttribute
    std::optional<CDuiRect> pos;                                // [design px]
    CDuiRect textPadding;                                       // [design px]
};

}  // namespace DuiLib
