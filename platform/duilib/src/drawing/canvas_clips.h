#pragma once

#include <vector>

#include "duilib/geometry.h"

namespace DuiLib {

inline constexpr int kMaxReach = 1 << 20;  // [device px] of corners and borders

// What a canvas is cut at, innermost last, and where shapes can stand so that what is seen of them stays the same. The
// same for every drawing library. UI turn.
class CanvasClips {
public:
    struct Cut {
        bool rounded;
        CDuiRect area;
        CDuiSize corner;
        CDuiRect bounds;  // of everything that can be drawn on
    };

    explicit CanvasClips(CDuiSize whole) : m_whole{0, 0, whole.cx, whole.cy} {}

    const CDuiRect& Bounds() const { return m_cuts.empty() ? m_whole : m_cuts.back().bounds; }
    const Cut& Push(const CDuiRect& area);  // returned until the next call
    const Cut& PushRounded(const CDuiRect& area, CDuiSize corner);
    Cut Pop();

    struct Shape {
        CDuiRect area;
        CDuiSize corner;
    };
    // How a shape is drawn here: with edges nearby, and with straight corners where it is cut at this very shape. A
    // round one drawn on top would have its smooth edge twice, and look faint at the corners.
    Shape Drawn(const CDuiRect& area, CDuiSize corner, int thickness = 0) const;
    // What a border of the shape leaves free within; with nothing of an area where it leaves nothing.
    static Shape Within(const Shape& outer, CDuiSize corner, int thickness);

    // A place of that size in the middle of an area.
    static CDuiRect Centered(CDuiSize size, const CDuiRect& area);

    // The rectangle with edges that are far out of sight brought near: drawing libraries' numbers are smaller than the
    // toolkit's. What is drawn at an edge, as wide as the corner and the thickness, stays where it is or out of sight.
    CDuiRect WithEdgesNearby(const CDuiRect& area, CDuiSize corner, int thickness = 0) const;

private:
    bool IsCutAt(const CDuiRect& area, CDuiSize corner) const;

    CDuiRect m_whole;
    std::vector<Cut> m_cuts;
};

}  // namespace DuiLib
