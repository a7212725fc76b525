#pragma once

#include <cmath>

#include "duilib/render_engine.h"

namespace DuiLib {

// Where a line of a text starts, relative to the left edge of its area [device px], which is `space` wider. `style` is
// CRenderEngine's text flags.
inline double LineOffset(unsigned style, bool rightToLeft, double space) {
    if (style & kTextCenter) return std::floor(space / 2);
    const bool atEnd = (style & kTextRight) != 0;
    return atEnd != rightToLeft ? space : 0;
}

// ... and its first line, relative to the top of an area that is `space` higher than all lines.
inline double TextTop(unsigned style, double space) {
    if (style & kTextVCenter) return std::floor(space / 2);
    return style & kTextBottom ? space : 0;
}

}  // namespace DuiLib
