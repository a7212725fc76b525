#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace source_rules {

// Path from the project's folder, with '/', to the lines of that file.
using SourceTree = std::map<std::string, std::vector<std::string>>;

std::vector<std::string> ReadLines(const std::filesystem::path& file);  // throws when it cannot be read

// Every C++ file of the project but those below build/ and hidden folders; throws when a file cannot be read.
SourceTree ReadSources(const std::filesystem::path& project);

// What an #include line names: `name` without its quotes or brackets.
struct Include {
    std::string name;
    bool quoted = false;
};
std::optional<Include> IncludeOf(const std::string& line);

// The files of the tree that `includer` can get for `name`: the one beside it, else all that end in /name, as the
// folders that a target searches differ; none when it is no file of the project.
std::vector<std::string> Candidates(const SourceTree& sources, const std::string& includer, const std::string& name);

std::string FolderOf(const std::string& path);  // without the last '/'
std::string NameOf(const std::string& path);

// Whether `text` is `pattern`, in which each '*' stands for any text.
bool Matches(std::string_view pattern, std::string_view text);

}  // namespace source_rules
