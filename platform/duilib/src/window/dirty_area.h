#pragma once

#include <vector>

#include "duilib/geometry.h"

namespace DuiLib {

// What of a window is to be painted again: a few rectangles [device px] that together cover it.
class DirtyArea {
public:
    void Add(const CDuiRect& area);
    bool IsEmpty() const { return m_areas.empty(); }

    // The part that lies within `bounds`; nothing is left.
    std::vector<CDuiRect> Take(const CDuiRect& bounds);

private:
    std::vector<CDuiRect> m_areas;
};

}  // namespace DuiLib
