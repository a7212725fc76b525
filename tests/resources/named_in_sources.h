#pragma once

#include <filesystem>
#include <map>
#include <regex>
#include <string>

// What the project's own files name: a test that looks for it there has no list of its own to keep.
namespace named_in_sources {

// The first group of every match, to the file that has it.
using Names = std::map<std::string, std::string>;

// In the sources below a folder of the project, which is given with '/'; tests are left out.
Names InSources(const std::string& folder, const std::regex& pattern);

// In the layouts and in the sample's catalogue, as they stand in the project.
Names InLayouts(const std::regex& pattern);
Names InCatalogue(const std::regex& pattern);

// In all of these: the sources of the module and of the programs.
Names Everywhere(const std::regex& pattern);

}  // namespace named_in_sources
