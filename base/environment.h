#pragma once

#include <optional>
#include <string>
#include <vector>

// This process's environment, which its children get. Texts are UTF-8.
namespace base {

// Every variable as "NAME=VALUE". Windows has names that begin with "=", such as "=C:".
std::vector<std::string> OwnEnvironment();

// The order of names; of two names neither of which comes first, both mean the same variable. Capitals do not count on
// Windows.
bool ComesBefore(const std::string& name, const std::string& other);

// Sets a variable, or removes it. While there is one thread, or none that reads the environment.
void SetVariable(const std::string& name, const std::optional<std::string>& value);

}  // namespace base
