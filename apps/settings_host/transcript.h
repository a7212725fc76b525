#pragma once

#include <string>

namespace settings_host {

// Writes one line to standard output, whole, and at once. Any thread.
void Say(const std::string& line);

}  // namespace settings_host
