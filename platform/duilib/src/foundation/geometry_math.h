#pragma once

#include <algorithm>
#include <cstdint>

#include "duilib/geometry.h"

namespace DuiLib {

// No length or position is larger than this [px], so that a page of absurd sizes cannot overflow.
inline constexpr int kMaxExtent = 1 << 24;

inline int ClampExtent(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, -kMaxExtent, kMaxExtent));
}

CDuiRect ScaleThickness(const CDuiRect& design);  // each side, by the process's display scale

CDuiRect Intersection(const CDuiRect& a, const CDuiRect& b);  // the empty rectangle when they do not meet
CDuiRect Inflated(const CDuiRect& area, int by);

}  // namespace DuiLib
