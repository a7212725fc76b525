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

    // The rectangle with edges that are far out of sight brought near: drawing libraries' numbers are smaller than the
    // toolkit's. What is drawn at an edge, as wide as the corner and the thickness, stays where it is or out of sight.
    CDuiRect Near(const CDuiRect& area, CDuiSize corner, int thickness = 0) const;

    // Whether what is drawn now is cut at this very shape. A round shape drawn on top would have its smooth edge
    // twice, and look faint at the corners.
    bool IsCutAt(const CDuiRect& area, CDuiSize corner) const;

private:
    CDuiRect m_whole;
    std::vector<Cut> m_cuts;
};

}  // namespace DuiLib
