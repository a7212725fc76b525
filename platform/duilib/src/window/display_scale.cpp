#include "window/display_scale.h"

#include <algorithm>
#include <cmath>

namespace DuiLib {

unsigned ScaleForDensity(double dotsPerInch) {
    const long steps = std::lround(dotsPerInch / kPlainDensity * 4);
    return static_cast<unsigned>(std::clamp(steps, 4l, 12l)) * 25;
}

}  // namespace DuiLib
