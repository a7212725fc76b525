#include "pipe/pipe_path.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "base/text.h"
#include "pipe_folder.h"

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
    return FallbackPipeFolder();
}

}  // namespace

fs::path PipePath(const std::wstring& pipeName) {
    return PipeFolder() / (base::Utf8FromWide(PlainPipeName(pipeName)) + ".sock");
}

}  // namespace ipc_client
