#pragma once

#include <cstdint>

namespace DuiLib {

// Plain values. Unless a name or comment says "design", coordinates are device pixels.
struct CDuiPoint {
    int x = 0;
    int y = 0;
};

struct CDuiSize {
    int cx = 0;
    int cy = 0;

    friend bool operator==(const CDuiSize&, const CDuiSize&) = default;
};

// `right` and `bottom` lie just outside.
struct CDuiRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    friend bool operator==(const CDuiRect&, const CDuiRect&) = default;
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool Contains(CDuiPoint p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
};

using CDuiColor = std::uint32_t;  // 0xAARRGGBB

}  // namespace DuiLib
