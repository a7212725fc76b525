#include "base/environment.h"

#include <cstdlib>

extern char** environ;

namespace base {

std::vector<std::string> OwnEnvironment() {
    std::vector<std::string> variables;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    return variables;
}

bool ComesBefore(const std::string& name, const std::string& other) { return name < other; }

void SetVariable(const std::string& name, const std::optional<std::string>& value) {
    value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
}

}  // namespace base
