#include "pipe/pipe_transport.h"

#include <stdexcept>

#include "base/path.h"

namespace ipc_client {

void FailAt(const std::filesystem::path& path, const std::string& reason) {
    throw std::runtime_error(base::Utf8FromPath(path) + ": " + reason);
}

void FailAsTaken(const std::filesystem::path& path, const std::string& reason) {
    FailAt(path, "the name is taken by another broker (" + reason + ")");
}

void CheckBrokersUser(const std::filesystem::path& path, bool isThisUser) {
    if (!isThisUser) FailAt(path, "the broker belongs to another user");
}

void CheckLength(const std::filesystem::path& path, const char* what, std::size_t limit, const char* unit) {
    const std::size_t length = path.native().size();
    if (length <= limit) return;
    FailAt(path, std::string(what) + " may have " + std::to_string(limit) + " " + unit + ", this one has " +
                     std::to_string(length));
}

}  // namespace ipc_client
