#pragma once

#include <filesystem>
#include <vector>

// The folder in which the sockets of a user's pipes are.
namespace ipc_client {

// /tmp/brindle-UID: where there is no better place (PipePath).
std::filesystem::path FallbackPipeFolder();

// The folders that stand for `folder`: real ones, of this user and closed to others, in the order in which whoever
// looks for a pipe tries them. That is `folder` alone; for the fallback, which any user of the machine may have made
// first, also each /tmp/brindle-UID-XXXXXX, by name. Such a one cannot be made in this user's name, nor guessed and
// taken before it is made. Never empty: throws std::runtime_error naming the folder and what is wrong with it.
std::vector<std::filesystem::path> PipeFolders(const std::filesystem::path& folder);

// The same for a broker, which makes a folder where there is none (mode 0700; its parent must exist): `folder`, or
// another one where another user has the fallback's name. As two brokers may each make one at once, a pipe's name is
// taken in all of them.
std::vector<std::filesystem::path> PreparePipeFolders(const std::filesystem::path& folder);

}  // namespace ipc_client
