#pragma once

#include <functional>
#include <string>

// Runs `work` in a process of its own and returns what it returned. A process that ends in another way gives a text that
// says how.
std::string RunIsolated(const std::function<std::string()>& work);
