#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "duilib/resource_manager.h"
#include "duilib/shared_text.h"
#include "tree/attribute_rules.h"

namespace DuiLib {

class CControlUI;

struct LayoutAttribute {
    SharedText name;
    SharedText value;
    const AttributeRule* rule;  // null when the toolkit does not know the attribute
    int line;
    mutable bool reported = false;  // that something is wrong with it: said once, however many controls are built
};

// One element of a layout file, shared by all controls that were built from it.
struct LayoutElement {
    std::string name;       // UTF-8
    CControlUI* (*make)();  // null when the toolkit does not know the class
    int line;
    std::vector<LayoutAttribute> attributes;
    std::vector<LayoutElement> children;
};

struct LayoutFile {
    std::string path;  // UTF-8
    std::vector<std::pair<int, FontDescription>> fonts;
    LayoutElement root;  // the one control in <Window>
};

// Reads the text of a layout file (docs/layout.md). Throws XmlError.
LayoutFile ParseLayout(const std::filesystem::path& path, std::string text);

}  // namespace DuiLib
