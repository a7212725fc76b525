#pragma once

namespace settings_host {

// Writes every message that this process posts and gets into the transcript, with its name where it has one.
void TraceMessages();

}  // namespace settings_host
