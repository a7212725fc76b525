#pragma once

#include <string>

// The transcript of a run, on standard output: what happens, the page as text, and the messages when asked for.
namespace settings_host {

// Writes one line, whole, and at once. Any thread.
void WriteTranscript(const std::string& line);

// From now on, writes every message that this process posts and gets, with its name where it has one.
void TraceMessages();

}  // namespace settings_host
