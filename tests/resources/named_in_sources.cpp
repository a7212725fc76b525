#include "named_in_sources.h"

#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

namespace named_in_sources {
namespace {

namespace fs = std::filesystem;

void AddMatches(const fs::path& file, const std::regex& pattern, Names& names) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw std::runtime_error(file.string() + ": cannot be read");
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
        names.emplace((*match)[1], file.string());
    }
}

Names Below(const std::string& folder, const std::set<std::string>& extensions, const std::regex& pattern) {
    Names names;
    for (const fs::directory_entry& file : fs::recursive_directory_iterator(fs::path(PROJECT_FOLDER) / folder)) {
        const bool isTest = file.path().stem().string().ends_with("_test");
        if (!file.is_regular_file() || isTest || !extensions.contains(file.path().extension().string())) continue;
        AddMatches(file.path(), pattern, names);
    }
    return names;
}

}  // namespace

Names InSources(const std::string& folder, const std::regex& pattern) { return Below(folder, {".cpp", ".h"}, pattern); }

Names InLayouts(const std::regex& pattern) { return Below("resources/layout", {".xml"}, pattern); }

Names InCatalogue(const std::regex& pattern) {
    Names names;
    AddMatches(fs::path(PROJECT_FOLDER) / "resources/catalogue/catalogue.json.in", pattern, names);
    return names;
}

Names Everywhere(const std::regex& pattern) {
    Names names = InSources("plugin", pattern);
    names.merge(InSources("apps", pattern));
    names.merge(InLayouts(pattern));
    names.merge(InCatalogue(pattern));
    return names;
}

}  // namespace named_in_sources
