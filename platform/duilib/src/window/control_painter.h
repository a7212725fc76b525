#pragma once

#include "drawing/canvas.h"
#include "duilib/control.h"
#include "tree/control_look.h"
#include "window/paint_manager_state.h"

namespace DuiLib {

// Paints controls as their looks say (docs/layout.md): ground, picture, border, text, then what lies in them.
struct ControlPainter {
    Canvas& canvas;
    const CPaintManagerUI::State& window;
    CDuiRect area;  // [device px] what of the window is painted; nothing else needs to be

    // `origin` is the left top corner of the parent, `enabled` whether all around is.
    void PaintTree(CControlUI& control, CDuiPoint origin, bool enabled) const;

    // The ring around the control that the keyboard moves.
    void PaintFocus(CControlUI& control) const;

    // [device px] How far the focus ring reaches beyond its control.
    static int FocusMargin();

private:
    struct Appearance;
    Appearance AppearanceOf(const CControlUI& control, bool enabled) const;
    void PaintOwn(const CControlUI& control, const CDuiRect& place, const Appearance& appearance) const;
    void PaintPicture(const LookProperty<PictureReference>& picture, const CDuiRect& place,
                      const Appearance& appearance) const;
    void PaintBorder(const CControlUI& control, const CDuiRect& place, const Appearance& appearance) const;
    void PaintText(const CControlUI& control, const CDuiRect& place, const Appearance& appearance) const;
};

}  // namespace DuiLib
