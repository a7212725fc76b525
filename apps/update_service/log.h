#pragma once

#include <functional>
#include <string>

#include "qx_logger/qx_logger.h"

namespace update_service {

// Where the service's log lines go [UTF-8, no line end]. Called on any thread, on several at once.
using Log = std::function<void(LOG_MESSAGE_LEVEL level, const std::string& line)>;

// Writes to the process-wide logger.
void LogToQxLogger(LOG_MESSAGE_LEVEL level, const std::string& line);

}  // namespace update_service
