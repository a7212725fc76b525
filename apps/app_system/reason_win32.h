#pragma once

#include <string>

namespace app_system {

// What the system says of an error of its own (GetLastError), in UTF-8 and in one line without a full stop.
std::string Reason(unsigned long error);
std::string LastReason();

}  // namespace app_system
