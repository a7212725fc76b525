#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

// Plays one scenario against the built module in this process and compares each step. Returns the first difference as
// text, empty when there is none. `loadModule` is called once, after the scenario's surroundings are set up.
std::string PlayScenario(const nlohmann::json& scenario, const std::filesystem::path& module);

// Decodes one vector and compares record and cursor.
std::string CheckDecodeVector(const nlohmann::json& vector);

std::string FromHex(const std::string& hex);
std::string ToHex(const std::string& bytes);
