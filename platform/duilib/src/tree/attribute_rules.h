#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "duilib/shared_text.h"

namespace DuiLib {

class CControlUI;

// What an attribute does to a control. The one table of all attributes is in control_attributes.cpp.
struct AttributeRule {
    std::wstring_view name;
    // False, and nothing changed, when the value cannot be read or the control's class has no such property.
    bool (*apply)(CControlUI& control, std::wstring_view value);
};

// The attributes of one element of a layout file, for all controls that are built from it.
struct AttributeList {
    struct Attribute {
        SharedText name;
        SharedText value;
        const AttributeRule* rule;  // null when the toolkit does not know the attribute
    };
    std::vector<Attribute> attributes;
};

// All of them, by name.
std::span<const AttributeRule> AttributeRules();

// Null for an attribute that nobody knows. Lives for ever.
const AttributeRule* FindAttributeRule(std::wstring_view name);

}  // namespace DuiLib
