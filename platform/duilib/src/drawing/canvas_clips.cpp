#include "drawing/canvas_clips.h"

#include <algorithm>

#include "foundation/geometry_math.h"

namespace DuiLib {

auto CanvasClips::Push(const CDuiRect& area) -> const Cut& {
    const CDuiRect bounds = Intersection(Bounds(), area);
    return m_cuts.emplace_back(Cut{false, bounds, {}, bounds});
}

auto CanvasClips::PushRounded(const CDuiRect& area, CDuiSize corner) -> const Cut& {
    return m_cuts.emplace_back(Cut{true, area, corner, Intersection(Bounds(), area)});
}

auto CanvasClips::Pop() -> Cut {
    const Cut cut = m_cuts.back();
    m_cuts.pop_back();
    return cut;
}

CDuiRect CanvasClips::WithEdgesNearby(const CDuiRect& area, CDuiSize corner, int thickness) const {
    const int reach = std::clamp(std::max(corner.cx, corner.cy), 0, kMaxReach) + std::min(thickness, kMaxReach);
    const CDuiRect room = Inflated(Bounds(), reach + 1);
    return {std::clamp(area.left, room.left, room.right), std::clamp(area.top, room.top, room.bottom),
            std::clamp(area.right, room.left, room.right), std::clamp(area.bottom, room.top, room.bottom)};
}

auto CanvasClips::Drawn(const CDuiRect& area, CDuiSize corner, int thickness) const -> Shape {
    return {WithEdgesNearby(area, corner, thickness), IsCutAt(area, corner) ? CDuiSize{} : corner};
}

auto CanvasClips::Within(const Shape& outer, CDuiSize corner, int thickness) -> Shape {
    return {Inflated(outer.area, -std::min(thickness, kMaxReach)),
            {std::max(0, corner.cx - thickness), std::max(0, corner.cy - thickness)}};
}

CDuiRect CanvasClips::Centered(CDuiSize size, const CDuiRect& area) {
    const int left = area.left + (area.Width() - size.cx) / 2;
    const int top = area.top + (area.Height() - size.cy) / 2;
    return {left, top, left + size.cx, top + size.cy};
}

bool CanvasClips::IsCutAt(const CDuiRect& area, CDuiSize corner) const {
    if (m_cuts.empty() || !m_cuts.back().rounded) return false;
    const CDuiRect& cut = m_cuts.back().area;
    const CDuiSize& cutCorner = m_cuts.back().corner;
    return cut.left == area.left && cut.top == area.top && cut.right == area.right && cut.bottom == area.bottom &&
           cutCorner.cx == corner.cx && cutCorner.cy == corner.cy;
}

}  // namespace DuiLib
