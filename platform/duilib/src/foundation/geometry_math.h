#pragma once

#include <algorithm>
#include <cstdint>

#include "duilib/geometry.h"
#include "duilib/resource_manager.h"

namespace DuiLib {

// No length or position is larger than this [px], so that a page of absurd sizes cannot overflow.
inline constexpr int kMaxExtent = 1 << 24;

inline int ClampExtent(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, -kMaxExtent, kMaxExtent));
}

// Each side, by the process's display scale.
inline CDuiRect ScaleThickness(const CDuiRect& design) {
    if (!(design.left | design.top | design.right | design.bottom)) return {};
    const CResourceManager& resources = *CResourceManager::GetInstance();
    return {resources.Scale(design.left), resources.Scale(design.top), resources.Scale(design.right),
            resources.Scale(design.bottom)};
}

// The empty rectangle when they do not meet.
inline CDuiRect Intersection(const CDuiRect& a, const CDuiRect& b) {
    const CDuiRect both{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                        std::min(a.bottom, b.bottom)};
    return both.Width() > 0 && both.Height() > 0 ? both : CDuiRect{};
}

inline CDuiRect Inflated(const CDuiRect& area, int by) {
    return {area.left - by, area.top - by, area.right + by, area.bottom + by};
}

}  // namespace DuiLib
