#pragma once

#include <filesystem>
#include <set>
#include <string>

// Layout files for tests: the names that the module looks up and nothing else, in a folder of their own that goes with
// this object. It becomes the toolkit's resource base.
class MinimalLayouts {
public:
    struct Options {
        std::set<std::string> missing;  // names that no layout defines
        bool pageLayout = true;         // whether the file is there
        bool rowLayout = true;
        std::set<std::string> plain = {};  // containers that the row's layout defines as controls without children
    };

    explicit MinimalLayouts(const Options& options);
    ~MinimalLayouts();
    MinimalLayouts(const MinimalLayouts&) = delete;
    MinimalLayouts& operator=(const MinimalLayouts&) = delete;

private:
    std::filesystem::path m_folder;
};
