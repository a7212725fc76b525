#pragma once

#include <vector>

#include "duilib/paint_manager.h"
#include "name_table.h"
#include "paint_dc.h"

namespace DuiLib {

struct CPaintManagerUI::State {
    explicit State(CPaintManagerUI* manager) : dc(manager) {}

    PaintDC dc;
    CDuiSize clientSize;
    NameTable names;
    std::vector<CNotifyPump*> pumps;
    std::vector<TNotifyUI*> underWay;  // notifications whose handlers have not all returned; any thread's

    // Controls of the tree; each is forgotten when it goes.
    CControlUI* root = nullptr;
    CControlUI* hovered = nullptr;
    CControlUI* pressed = nullptr;
    CControlUI* focused = nullptr;
};

}  // namespace DuiLib
