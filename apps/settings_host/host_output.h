#pragma once

#include <string>

#include "options.h"

// What the host writes of a run: the transcript, on standard output, with what happens, the page as text, and the
// messages when asked for; and the log that the page and the host's libraries write to.
namespace settings_host {

// Writes one line, whole, and at once: what peers have sent may hold line breaks, which become escapes. Any thread.
void WriteTranscript(const std::string& line);

// From now on, writes every message that this process posts and gets, with its name where it has one.
void TraceMessages();

// Opens the log as the command line says, and lets the libraries' lines go there. Throws std::runtime_error, naming the
// file and the reason.
void OpenLog(const CommandLine& commandLine);

// One line, UTF-8; the logger escapes line breaks, too. One that cannot be written is dropped. Any thread.
void WriteLog(int level, const std::string& text) noexcept;

// Lets go of the log file; later lines go nowhere.
void CloseLog();

}  // namespace settings_host
