#pragma once

#include "drawing/canvas.h"
#include "duilib/control.h"
#include "window/paint_manager_state.h"

namespace DuiLib {

// Paints controls as their attributes say (docs/layout.md): ground, picture, border, text, then what lies in them.
struct ControlPainter {
    Canvas& canvas;
    const CPaintManagerUI::State& window;
    CDuiRect area;  // [device px] what of the window is painted; nothing else needs to be

    // `origin` is the left top corner of the parent, `enabled` whether all around is.
    void PaintTree(CControlUI& control, CDuiPoint origin, bool enabled) const;

    // The ring around the control that the keyboard moves.
    void PaintFocus(CControlUI& control) const;

    // Whether the control changes its look under the pointer although it cannot be clicked.
    static bool HasHotLook(const CControlUI& control);

    // [device px] How far the focus ring reaches beyond its control.
    static int FocusMargin();

private:
    struct Moment;  // how the control is looked at: hot, pushed, enabled
    void PaintOwn(CControlUI& control, const CDuiRect& place, const Moment& moment) const;
    void PaintGround(const CControlUI& control, const CDuiRect& place, const Moment& moment) const;
    void PaintPicture(const SharedText& attribute, const CDuiRect& place, const Moment& moment) const;
    void PaintBorder(const CControlUI& control, const CDuiRect& place, const Moment& moment) const;
    void PaintText(const CControlUI& control, const CDuiRect& place, const Moment& moment) const;
};

}  // namespace DuiLib
