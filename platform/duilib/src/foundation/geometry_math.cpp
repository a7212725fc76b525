#include "foundation/geometry_math.h"

#include <algorithm>

#include "duilib/resource_manager.h"

namespace DuiLib {

CDuiRect ScaleThickness(const CDuiRect& design) {
    if (!(design.left | design.top | design.right | design.bottom)) return {};
    const CResourceManager& resources = *CResourceManager::GetInstance();
    return {resources.Scale(design.left), resources.Scale(design.top), resources.Scale(design.right),
            resources.Scale(design.bottom)};
}

CDuiRect Intersection(const CDuiRect& a, const CDuiRect& b) {
    const CDuiRect both{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                        std::min(a.bottom, b.bottom)};
    return both.Width() > 0 && both.Height() > 0 ? both : CDuiRect{};
}

CDuiRect Inflated(const CDuiRect& area, int by) {
    return {area.left - by, area.top - by, area.right + by, area.bottom + by};
}

}  // namespace DuiLib
