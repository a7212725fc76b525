#pragma once

#include <string>

// Whether a process runs whose executable, or script, has that file name [UTF-8]. A process that has ended but was not
// yet waited for does not run.
bool IsProgramRunning(const std::string& fileName);
