#pragma once

#include <filesystem>
#include <string>

namespace ipc_client {

// Where the pipe of that name is on this system: "\\.\Pipe\NAME" is NAME.sock in the pipe folder, which is
// $BRINDLE_PIPE_DIR, else brindle/ in $XDG_RUNTIME_DIR if that is an absolute path of a folder of this user, else
// /tmp/brindle-UID/. Characters that a file name cannot carry become '_'. Creates and checks nothing.
//
// On Windows it is that pipe; $BRINDLE_PIPE_DIR puts a mark of that folder before NAME, so that programs with another
// one do not meet it.
std::filesystem::path PipePath(const std::wstring& pipeName);

#if !defined(_WIN32)
// Makes the pipe folder if it is missing (mode 0700, its parent must exist). Throws std::runtime_error naming the
// folder when that fails, or when the folder belongs to another user or is open to others.
void PreparePipeFolder(const std::filesystem::path& folder);
#endif

}  // namespace ipc_client
