#pragma once

#include <string>

namespace DuiLib {

// Gives a line to the sink of duilib/diagnostics.h.
void Report(const std::string& line);

}  // namespace DuiLib
