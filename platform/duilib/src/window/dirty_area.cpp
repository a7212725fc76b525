#include "window/dirty_area.h"

#include <algorithm>
#include <utility>

#include "foundation/geometry_math.h"

namespace DuiLib {

namespace {

constexpr std::size_t kMaxAreas = 16;  // with more, one around them all is painted faster

bool IsWithin(const CDuiRect& inner, const CDuiRect& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

CDuiRect Around(const CDuiRect& a, const CDuiRect& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

}  // namespace

// No two of them overlap, so that nothing half transparent is painted twice over itself.
void DirtyArea::Add(const CDuiRect& area) {
    if (area.Width() <= 0 || area.Height() <= 0) return;
    CDuiRect added = area;
    for (std::size_t i = 0; i < m_areas.size();) {
        if (IsWithin(added, m_areas[i])) return;
        if (Intersection(added, m_areas[i]).Width() == 0) {
            ++i;
            continue;
        }
        added = Around(added, m_areas[i]);
        m_areas.erase(m_areas.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0;
    }
    m_areas.push_back(added);
    if (m_areas.size() <= kMaxAreas) return;
    for (const CDuiRect& other : m_areas) added = Around(added, other);
    m_areas.assign(1, added);
}

std::vector<CDuiRect> DirtyArea::Take(const CDuiRect& bounds) {
    std::vector<CDuiRect> taken = std::exchange(m_areas, {});
    for (CDuiRect& area : taken) area = Intersection(area, bounds);
    std::erase_if(taken, [](const CDuiRect& area) { return area.Width() == 0; });
    return taken;
}

}  // namespace DuiLib
