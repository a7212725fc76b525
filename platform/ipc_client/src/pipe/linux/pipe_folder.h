#pragma once

#include <filesystem>

namespace ipc_client {

// Makes the pipe folder if it is missing (mode 0700, its parent must exist). Throws std::runtime_error naming the
// folder when that fails, or when the folder belongs to another user or is open to others.
void PreparePipeFolder(const std::filesystem::path& folder);

}  // namespace ipc_client
