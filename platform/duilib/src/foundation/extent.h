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

inline CDuiRect ScaleThickness(const CDuiRect& design) {
    if (!(design.left | design.top | design.right | design.bottom)) return {};
    const CResourceManager& resources = *CResourceManager::GetInstance();
    return {resources.Scale(design.left), resources.Scale(design.top), resources.Scale(design.right),
            resources.Scale(design.bottom)};
}

}  // namespace DuiLib
