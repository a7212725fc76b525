#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

#include "drawing/paint_dc.h"
#include "duilib/paint_manager.h"
#include "tree/name_table.h"
#include "window/dirty_area.h"
#include "window/tool_tip.h"

namespace DuiLib {

class CScrollViewUI;

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
    CControlUI* modal = nullptr;          // input goes to it and what lies in it alone
    CControlUI* focusedBefore = nullptr;  // what gets the focus back after that
    CScrollViewUI* dragged = nullptr;     // its bar is
    std::vector<CScrollViewUI*> moving;
    std::vector<CControlUI*> hot;  // those under the pointer that change their look for it, buttons excluded

    // ---- Input
    std::optional<CDuiPoint> pointer;  // in the window, where it was last
    bool focusShown = false;           // the focus has its ring
    bool keyboardLast = false;         // the keyboard was used after the pointer: the focus shows its tip
    ToolTipTimer tip;
    CDuiRect tipPlace;  // [device px] as painted last; empty while there is none

    // ---- Painting
    std::function<void()> wakeUp;
    bool watched = false;  // somebody paints, or wants to be woken
    bool awake = false;    // has been woken since the last painting
    bool laidOut = false;  // since the last painting
    DirtyArea dirty;
    const PaintSurface* painted = nullptr;

    bool IsHot(const CControlUI& control) const { return std::ranges::find(hot, &control) != hot.end(); }
    CDuiRect ClientArea() const { return {0, 0, clientSize.cx, clientSize.cy}; }
};

}  // namespace DuiLib
