#pragma once

#include <cstdint>

#include "foundation/geometry_math.h"

namespace DuiLib {

// Deals out what the others of a row or column leave: equal shares, the first ones a pixel larger where it does not
// divide; nothing when nothing is left.
class Sharing {
public:
    Sharing(std::int64_t left, int takers) {
        if (left <= 0 || takers == 0) return;
        m_each = static_cast<int>(ClampExtent(left) / takers);
        m_larger = static_cast<int>(ClampExtent(left) % takers);
    }
    int Next() { return m_each + (m_larger-- > 0 ? 1 : 0); }

private:
    int m_each = 0;
    int m_larger = 0;
};

}  // namespace DuiLib
