#pragma once

#include <string>
#include <vector>

// Runs `program` with these arguments in a process of its own and returns what it printed, without the last line's end.
// A process that ends in another way than it should gives a text that says how. Its errors go where ours go.
std::string RunIsolated(const std::string& program, const std::vector<std::string>& arguments);
