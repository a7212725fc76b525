#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

#include "drawing/canvas.h"
#include "duilib/paint_manager.h"
#include "foundation/layout_basis.h"
#include "tree/tree_window.h"
#include "window/tool_tip.h"

namespace DuiLib {

// What of a window is to be painted again: a few rectangles [device px] that together cover it.
class DirtyArea {
public:
    void Add(const CDuiRect& area);
    bool IsEmpty() const { return m_areas.empty(); }

    // The part that lies within `bounds`; nothing is left.
    std::vector<CDuiRect> Take(const CDuiRect& bounds);

private:
    std::vector<CDuiRect> m_areas;
};

struct CPaintManagerUI::State final : TreeWindow {
    explicit State(CPaintManagerUI& owner) : manager(owner), dc(&owner) {}

    CPaintManagerUI& manager;  // the state may outlive it, with neither a tree nor a listener then
    PaintDC dc;
    std::optional<LayoutBasisListener> layoutBasis;
    CDuiSize clientSize;
    NameTable names;
    std::vector<CNotifyPump*> pumps;
    std::vector<TNotifyUI*> underWay;  // notifications whose handlers have not all returned; any thread's

    // Controls of the tree; each is forgotten when it goes.
    CControlUI* root = nullptr;
    CControlUI* hovered = nullptr;
    CControlUI* pressed = nullptr;
    CControlUI* focused = nullptr;
    CControlUI* modal = nullptr;          // input goes to it and what lies in it only
    CControlUI* focusedBefore = nullptr;  // what gets the focus back after that
    CControlUI* dragged = nullptr;        // follows the pointer
    std::vector<CControlUI*> moving;      // their content does
    std::vector<CControlUI*> hot;         // those under the pointer that change their look for it, buttons excluded

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

    // ---- What the tree asks for and tells
    CPaintManagerUI* Manager() override { return &manager; }
    NameTable& Names() override { return names; }
    void Forget(CControlUI& control) override { manager.Forget(control); }
    void Layout() override { manager.Layout(); }
    void Changed() override { manager.Changed(); }
    bool WatchesChanges() const override { return watched; }
    void Invalidate(const CControlUI& shown) override { manager.Invalidate(shown); }
    void BeginTicks(CControlUI& control) override { manager.BeginTicks(control); }
    void ToolTipSet(const CControlUI& control, bool changed) override { manager.ToolTipSet(control, changed); }

    bool IsHot(const CControlUI& control) const { return std::ranges::find(hot, &control) != hot.end(); }
    CDuiRect ClientArea() const { return {0, 0, clientSize.cx, clientSize.cy}; }
};

}  // namespace DuiLib
