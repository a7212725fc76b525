#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "duilib/control.h"
#include "foundation/attribute_values.h"
#include "tree/control_look.h"

namespace DuiLib {

// ---- What attributes say

// What the text of an attribute says, read once; nothing where the text is not of the attribute's form.
using AttributeValue = std::variant<std::monostate, SharedText, bool, int, CDuiColor, CDuiSize, CDuiRect, Alignment,
                                    ControlRole, PictureReference>;

// How an attribute is read, and where its value goes. The one table of all attributes is in control_attributes.cpp.
struct AttributeRule {
    std::wstring_view name;
    AttributeValue (*read)(const SharedText& text);
    // One of two, the other is null. Those that bear on more than painting change the control, which then knows whether
    // it is to be laid out or painted again; false, and nothing changed, when it has no such property.
    bool (*apply)(CControlUI& control, const AttributeValue& value);
    // Those that only painting reads are a part of the look, also when the text cannot be read.
    void (*paint)(ControlLook& look, const AttributeValue& value);
};

// The attributes of one element of a layout file, for all controls that are built from it.
struct AttributeList {
    struct Attribute {
        SharedText name;
        SharedText text;
        const AttributeRule* rule;  // null when the toolkit does not know the attribute
        AttributeValue value;

        // To a control that was built from the element. False when that has no effect, which is worth a warning.
        bool ApplyTo(CControlUI& control) const;
    };
    std::vector<Attribute> attributes;
    std::shared_ptr<const ControlLook> look;  // null when nothing is said of it

    void Add(std::wstring_view name, std::wstring_view text);
};

// All of them, by name.
std::span<const AttributeRule> AttributeRules();

// Null for an attribute that nobody knows. Lives for ever.
const AttributeRule* FindAttributeRule(std::wstring_view name);

// ---- What controls keep of it

// The copy of a look that all controls share that look so: the rows of a page look alike. UI turn.
std::shared_ptr<const ControlLook> ShareLook(const ControlLook& look);

// What only some controls have.
struct ControlExtras {
    SharedText toolTip;
    SharedText virtualWnd;
    std::vector<std::pair<SharedText, SharedText>> attributes;  // name and text, given by SetAttribute
    std::shared_ptr<const ControlLook> look;                    // null while it is the element's
    std::optional<CDuiRect> pos;                                // [design px]
    CDuiRect textPadding;                                       // [design px]
};

}  // namespace DuiLib
