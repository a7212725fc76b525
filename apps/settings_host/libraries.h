#pragma once

#include "options.h"

namespace settings_host {

// Prepares the libraries that the page and the host share: log, usage report, companions, scale, resources, language.
// Throws std::runtime_error, naming the file and the reason.
void SetUpLibraries(const CommandLine& commandLine);

// Lets go of the log file; later lines go nowhere.
void CloseLog();

}  // namespace settings_host
