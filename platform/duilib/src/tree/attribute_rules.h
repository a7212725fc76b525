#pragma once

#include <span>
#include <string_view>

namespace DuiLib {

class CControlUI;

// What an attribute does to a control. The one table of all attributes is in control_attributes.cpp.
struct AttributeRule {
    std::wstring_view name;
    // False, and nothing changed, when the value cannot be read or the control's class has no such property.
    bool (*apply)(CControlUI& control, std::wstring_view value);
};

// All of them, by name.
std::span<const AttributeRule> AttributeRules();

// Null for an attribute that nobody knows. Lives for ever.
const AttributeRule* FindAttributeRule(std::wstring_view name);

}  // namespace DuiLib
