#include "system_rules.h"

namespace update_service {

std::vector<std::string> ShellCommand(std::string text) { return {"cmd.exe", "/d", "/s", "/c", std::move(text)}; }

bool CapitalsCount() { return false; }

bool IsDeviceName(const std::string& name) {
    const std::string stem = name.substr(0, name.find('.'));
    if (stem == "con" || stem == "prn" || stem == "aux" || stem == "nul") return true;
    return stem.size() == 4 && (stem.starts_with("com") || stem.starts_with("lpt")) && stem[3] >= '0' && stem[3] <= '9';
}

}  // namespace update_service
