#pragma once

#include <filesystem>
#include <map>
#include <string>

// Which accessories have a companion program, and whether it runs.

// Device key to the file name of its companion program [UTF-8].
using Companions = std::map<std::wstring, std::string>;

// Reads a configuration file. Throws std::runtime_error that names the file, the line or field, and the reason.
Companions ReadCompanions(const std::filesystem::path& file);

// Whether a process runs whose executable, or script, has that file name [UTF-8]. A process that has ended but was not
// yet waited for does not run.
bool IsProgramRunning(const std::string& fileName);
