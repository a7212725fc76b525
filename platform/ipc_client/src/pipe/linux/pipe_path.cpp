#include "pipe/pipe_path.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "base/file.h"
#include "base/reason.h"
#include "base/text.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;

bool IsFolderOfThisUser(const char* path) {
    struct stat info;
    return path[0] == '/' && stat(path, &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == geteuid();
}

fs::path PipeFolder() {
    if (fs::path chosen = ChosenPipeFolder(); !chosen.empty()) return chosen;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && IsFolderOfThisUser(runtime)) return fs::path(runtime) / "brindle";
    return "/tmp/brindle-" + std::to_string(geteuid());
}

[[noreturn]] void Refuse(const fs::path& folder, const std::string& reason) {
    throw std::runtime_error("pipe folder " + base::Utf8FromPath(folder) + ": " + reason);
}

}  // namespace

fs::path PipePath(const std::wstring& pipeName) {
    return PipeFolder() / (base::Utf8FromWide(PlainPipeName(pipeName)) + ".sock");
}

void PreparePipeFolder(const fs::path& folder) {
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) Refuse(folder, base::LastReason());
    struct stat info;
    if (lstat(folder.c_str(), &info) != 0) Refuse(folder, base::LastReason());
    if (!S_ISDIR(info.st_mode)) Refuse(folder, "not a folder");
    if (info.st_uid != geteuid()) Refuse(folder, "belongs to another user");
    if ((info.st_mode & 077) != 0) Refuse(folder, "is open to other users (mode 0700 is needed)");
}

}  // namespace ipc_client
