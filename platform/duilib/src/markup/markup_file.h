#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "duilib/resource_manager.h"
#include "tree/attribute_rules.h"

namespace DuiLib {

// One element of a layout file, shared by all controls that were built from it.
struct MarkupElement {
    std::string name;       // UTF-8
    CControlUI* (*make)();  // null when the toolkit does not know the class
    int line;
    AttributeList given;
    struct Place {
        int line;
        mutable bool reported = false;  // that something is wrong there: said once, however many controls are built
    };
    std::vector<Place> places;  // of the attributes
    std::vector<MarkupElement> children;
};

struct MarkupFile {
    std::string path;  // UTF-8
    std::vector<std::pair<int, FontDescription>> fonts;
    MarkupElement root;  // the one control in <Window>
};

// The parsed layout of a file, kept from call to call while the file stays the same. A file that changed so lately that
// its time stamp could miss a further change is read and compared again. Throws XmlError. UI turn.
std::shared_ptr<const MarkupFile> LoadMarkup(const std::filesystem::path& path);

}  // namespace DuiLib
