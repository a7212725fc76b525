#pragma once

#include <functional>
#include <string>

#include "duilib/export.h"

namespace DuiLib {

// Where the toolkit says what is wrong with a layout, a language file or a picture: one UTF-8 line with the file, the
// line and the reason. Standard error until a sink is set; an empty sink restores that. What a sink throws is
// ignored. Any thread.
using DiagnosticSink = std::function<void(const std::string& line)>;
DUILIB_API void SetDiagnosticSink(DiagnosticSink sink);

}  // namespace DuiLib
