#pragma once

#include <string>

#include "qx_logger/qx_logger.h"

namespace settings_host {

// One line of a library of the host's, UTF-8, into the log that the page writes to. Any thread.
void LogLibraryLine(int level, const std::string& text);

}  // namespace settings_host
