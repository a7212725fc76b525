#include <cstdlib>

#include "language_choice.h"

namespace settings_host {

std::string SystemLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

}  // namespace settings_host
