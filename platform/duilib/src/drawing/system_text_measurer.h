#pragma once

#include "duilib/render_engine.h"

namespace DuiLib {

// The measurer of the system that the toolkit was built for. UI turn.
TextMeasurer& SystemTextMeasurer();

}  // namespace DuiLib
