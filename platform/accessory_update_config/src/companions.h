#pragma once

#include <filesystem>
#include <map>
#include <string>

// Device key to the file name of its companion program [UTF-8].
using Companions = std::map<std::wstring, std::string>;

// Reads a configuration file. Throws std::runtime_error that names the file, the line or field, and the reason.
Companions ReadCompanions(const std::filesystem::path& file);
