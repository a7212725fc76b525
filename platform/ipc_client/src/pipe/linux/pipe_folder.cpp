#include "pipe_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

#include "base/file.h"
#include "base/reason.h"

namespace ipc_client {
namespace {

namespace fs = std::filesystem;

// Empty when it may be used.
std::string WhyUnusable(const fs::path& folder) {
    struct stat info;
    if (lstat(folder.c_str(), &info) != 0) return base::LastReason();
    if (info.st_uid != geteuid()) return "belongs to another user";
    if (!S_ISDIR(info.st_mode)) return "not a folder";
    if ((info.st_mode & 077) != 0) return "is open to other users (mode 0700 is needed)";
    return "";
}

bool IsAnothers(const fs::path& folder) {
    struct stat info;
    return lstat(folder.c_str(), &info) == 0 && info.st_uid != geteuid();
}

[[noreturn]] void Refuse(const fs::path& folder, const std::string& reason) {
    throw std::runtime_error("pipe folder " + base::Utf8FromPath(folder) + ": " + reason);
}

std::string StandInPrefix(const fs::path& folder) { return folder.filename().native() + "-"; }

std::vector<fs::path> StandInsFor(const fs::path& folder) {
    std::vector<fs::path> found;
    const std::string prefix = StandInPrefix(folder);
    std::error_code error;
    for (fs::directory_iterator entry(folder.parent_path(), error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().native().starts_with(prefix) && WhyUnusable(entry->path()).empty()) {
            found.push_back(entry->path());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::vector<fs::path> UsableFolders(const fs::path& folder) {
    std::vector<fs::path> usable;
    if (folder == FallbackPipeFolder()) usable = StandInsFor(folder);
    if (WhyUnusable(folder).empty()) usable.insert(usable.begin(), folder);
    return usable;
}

void MakeFolder(const fs::path& folder) {
    if (mkdir(folder.c_str(), 0700) == 0) return;
    if (errno != EEXIST) Refuse(folder, base::LastReason());
    if (folder != FallbackPipeFolder() || !IsAnothers(folder)) return;
    std::string standIn = folder.parent_path() / (StandInPrefix(folder) + "XXXXXX");
    if (mkdtemp(standIn.data()) == nullptr) Refuse(standIn, base::LastReason());
}

}  // namespace

fs::path FallbackPipeFolder() { return "/tmp/brindle-" + std::to_string(geteuid()); }

std::vector<fs::path> PipeFolders(const fs::path& folder) {
    std::vector<fs::path> usable = UsableFolders(folder);
    if (usable.empty()) Refuse(folder, WhyUnusable(folder));
    return usable;
}

std::vector<fs::path> PreparePipeFolders(const fs::path& folder) {
    if (UsableFolders(folder).empty()) MakeFolder(folder);
    return PipeFolders(folder);
}

}  // namespace ipc_client
