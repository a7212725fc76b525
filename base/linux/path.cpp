#include "base/path.h"

namespace base {

std::string Utf8FromPath(const std::filesystem::path& path) { return path.native(); }

std::filesystem::path PathFromUtf8(std::string_view text) { return text; }

std::filesystem::path ProgramFolder() { return std::filesystem::read_symlink("/proc/self/exe").parent_path(); }

}  // namespace base
