#include "source_tree.h"

#include <cstddef>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace source_rules {
namespace {

bool IsSkipped(const std::filesystem::path& folder) {
    const std::string name = folder.filename().string();
    return name == "build" || name.starts_with('.');
}

}  // namespace

std::vector<std::string> ReadLines(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error(file.string() + ": cannot be read");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

SourceTree ReadSources(const std::filesystem::path& project) {
    SourceTree sources;
    for (auto i = std::filesystem::recursive_directory_iterator(project); i != end(i); ++i) {
        if (i->is_directory() && IsSkipped(i->path())) i.disable_recursion_pending();
        const std::string extension = i->path().extension().string();
        if (!i->is_regular_file() || (extension != ".cpp" && extension != ".h")) continue;
        sources[i->path().lexically_relative(project).generic_string()] = ReadLines(i->path());
    }
    return sources;
}

std::optional<Include> IncludeOf(const std::string& line) {
    static const std::regex pattern(R"re(\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>).*)re");
    std::smatch match;
    if (!std::regex_match(line, match, pattern)) return std::nullopt;
    return match[1].matched ? Include{match[1], true} : Include{match[2], false};
}

std::vector<std::string> Candidates(const SourceTree& sources, const std::string& includer, const std::string& name) {
    const std::string beside = FolderOf(includer) + '/' + name;
    if (sources.contains(beside)) return {beside};
    std::vector<std::string> candidates;
    for (const auto& [path, lines] : sources) {
        if (path == name || path.ends_with('/' + name)) candidates.push_back(path);
    }
    return candidates;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash);
}

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

bool Matches(std::string_view pattern, std::string_view text) {
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos) return pattern == text;
    if (!text.starts_with(pattern.substr(0, star))) return false;
    for (std::size_t from = star; from <= text.size(); ++from) {
        if (Matches(pattern.substr(star + 1), text.substr(from))) return true;
    }
    return false;
}

}  // namespace source_rules
