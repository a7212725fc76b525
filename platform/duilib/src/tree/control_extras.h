#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "duilib/geometry.h"
#include "duilib/shared_text.h"
#include "tree/control_look.h"

namespace DuiLib {

// What only some controls have.
struct ControlExtras {
    SharedText toolTip;
    SharedText virtualWnd;
    std::vector<std::pair<SharedText, SharedText>> attributes;  // name and text, given by SetAttribute
    std::shared_ptr<const ControlLook> look;                    // null while it is the element's
    std::optional<CDuiRect> pos;                                // [design px]
    CDuiRect textPadding;                                       // [design px]
};

}  // namespace DuiLib
