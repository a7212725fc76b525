#include "system_rules.h"

namespace update_service {

std::vector<std::string> ShellCommand(std::string text) { return {"/bin/sh", "-c", std::move(text), "installer"}; }

bool CapitalsCount() { return true; }

bool IsDeviceName(const std::string&) { return false; }

}  // namespace update_service
