#pragma once

#include <string>

#include "options.h"

// The log that the page and the host's libraries write to.
namespace settings_host {

// Opens it as the command line says, and lets the libraries' lines go there. Throws std::runtime_error, naming the file
// and the reason.
void OpenLog(const CommandLine& commandLine);

// One line, UTF-8. One that cannot be written is dropped. Any thread.
void WriteLog(int level, const std::string& text) noexcept;

// Lets go of the log file; later lines go nowhere.
void CloseLog();

}  // namespace settings_host
