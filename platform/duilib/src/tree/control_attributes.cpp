#include <algorithm>
#include <array>

#include "drawing/picture_reference.h"
#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/render_engine.h"
#include "duilib/ui_culture.h"
#include "foundation/attribute_values.h"
#include "tree/attribute_rules.h"
#include "tree/control_extras.h"

namespace DuiLib {

namespace {

// The text itself, or what a bind text stands for in the language in use.
CDuiString Resolve(std::wstring_view text) {
    if (!text.starts_with(L"bind='")) return CDuiString(text);
    return UICulture::GetInstance()->GetBindString(text);
}

// Calls `set` with the value if there is one, and says whether there was.
template <class Value, class Set>
bool Use(const std::optional<Value>& value, Set set) {
    if (value) set(*value);
    return value.has_value();
}

}  // namespace

// What attributes do. Those that only painting uses are checked here and read when it paints.
struct AttributeAccess {
    using Control = CControlUI;
    using Text = std::wstring_view;
    using Align = CContainerUI::Align;

    static bool Name(Control& c, Text v) { return c.SetName(v), true; }
    static bool SetText(Control& c, Text v) { return c.SetText(Resolve(v)), true; }
    static bool ToolTip(Control& c, Text v) { return c.SetToolTip(Resolve(v)), true; }
    static bool VirtualWnd(Control& c, Text v) { return c.SetVirtualWnd(v), true; }
    static bool Visible(Control& c, Text v) {
        return Use(ParseBool(v), [&](bool visible) { c.SetVisible(visible); });
    }
    static bool Enabled(Control& c, Text v) {
        return Use(ParseBool(v), [&](bool enabled) { c.SetEnabled(enabled); });
    }
    static bool Width(Control& c, Text v) {
        return Use(ParseInt(v), [&](int width) { c.SetFixedWidth(width); });
    }
    static bool Height(Control& c, Text v) {
        return Use(ParseInt(v), [&](int height) { c.SetFixedHeight(height); });
    }
    static bool Font(Control& c, Text v) {
        return Use(ParseInt(v), [&](int font) { c.SetFont(font); });
    }
    static bool TextColor(Control& c, Text v) {
        return Use(ParseColor(v), [&](CDuiColor color) { c.SetTextColor(color); });
    }
    static bool Padding(Control& c, Text v) {
        return Use(ParseRect(v), [&](const CDuiRect& padding) {
            c.m_padding = padding;
            c.NeedLayoutAround();
        });
    }
    static bool TextPadding(Control& c, Text v) {
        return Use(ParseRect(v), [&](const CDuiRect& padding) {
            c.Extras().textPadding = padding;
            if (c.IsSizedByText()) c.NeedLayout();
        });
    }
    static bool Pos(Control& c, Text v) {
        return Use(ParseRect(v), [&](const CDuiRect& pos) {
            c.Extras().pos = pos;
            c.NeedLayoutAround();
        });
    }

    // ---- Text style
    static bool Style(Control& c, unsigned mask, unsigned bits) {
        c.SetTextStyle((c.GetTextStyle() & ~mask) | bits);
        return true;
    }
    static bool TextAlign(Control& c, Text v) {
        constexpr unsigned kMask = kTextCenter | kTextRight;
        if (v == L"left") return Style(c, kMask, kTextLeft);
        if (v == L"center") return Style(c, kMask, kTextCenter);
        if (v == L"right") return Style(c, kMask, kTextRight);
        return false;
    }
    static bool TextVAlign(Control& c, Text v) {
        constexpr unsigned kMask = kTextVCenter | kTextBottom;
        if (v == L"top") return Style(c, kMask, 0);
        if (v == L"center") return Style(c, kMask, kTextVCenter);
        if (v == L"bottom") return Style(c, kMask, kTextBottom);
        return false;
    }
    static bool EndEllipsis(Control& c, Text v) {
        return Use(ParseBool(v), [&](bool on) { Style(c, kTextEndEllipsis, on ? kTextEndEllipsis : 0); });
    }

    // ---- Containers
    template <class Set>
    static bool Container(Control& c, Set set) {
        auto* const container = dynamic_cast<CContainerUI*>(&c);
        if (!container || !set(*container)) return false;
        container->NeedLayout();
        return true;
    }
    static bool Inset(Control& c, Text v) {
        return Container(c, [&](CContainerUI& container) {
            return Use(ParseRect(v), [&](const CDuiRect& inset) { container.m_inset = inset; });
        });
    }
    static bool ChildPadding(Control& c, Text v) {
        return Container(c, [&](CContainerUI& container) {
            return Use(ParseInt(v), [&](int padding) { container.m_childPadding = padding; });
        });
    }
    static std::optional<Align> ReadAlign(Text v, Text start, Text end) {
        if (v == start) return Align::kStart;
        if (v == L"center") return Align::kCenter;
        if (v == end) return Align::kEnd;
        return {};
    }
    static bool ChildAlign(Control& c, Text v) {
        return Container(c, [&](CContainerUI& container) {
            return Use(ReadAlign(v, L"left", L"right"), [&](Align align) { container.m_childAlign = align; });
        });
    }
    static bool ChildVAlign(Control& c, Text v) {
        return Container(c, [&](CContainerUI& container) {
            return Use(ReadAlign(v, L"top", L"bottom"), [&](Align align) { container.m_childVAlign = align; });
        });
    }

    // ---- Painting
    static bool PaintColor(Control&, Text v) { return ParseColor(v).has_value(); }
    static bool PaintInt(Control&, Text v) { return ParseInt(v).has_value(); }
    static bool PaintSize(Control&, Text v) { return ParseSize(v).has_value(); }
    static bool PaintImage(Control&, Text v) { return ParsePicture(v).has_value(); }
};

namespace {

// Sorted by name.
using A = AttributeAccess;
constexpr std::array kRules = {
    AttributeRule{L"align", A::TextAlign},
    AttributeRule{L"bkcolor", A::PaintColor},
    AttributeRule{L"bkimage", A::PaintImage},
    AttributeRule{L"bkround", A::PaintSize},
    AttributeRule{L"bordercolor", A::PaintColor},
    AttributeRule{L"borderfillcolor", A::PaintColor},
    AttributeRule{L"bordersize", A::PaintInt},
    AttributeRule{L"childalign", A::ChildAlign},
    AttributeRule{L"childpadding", A::ChildPadding},
    AttributeRule{L"childvalign", A::ChildVAlign},
    AttributeRule{L"disabledtextcolor", A::PaintColor},
    AttributeRule{L"enabled", A::Enabled},
    AttributeRule{L"endellipsis", A::EndEllipsis},
    AttributeRule{L"font", A::Font},
    AttributeRule{L"height", A::Height},
    AttributeRule{L"hotbkcolor", A::PaintColor},
    AttributeRule{L"hotimage", A::PaintImage},
    AttributeRule{L"hottextcolor", A::PaintColor},
    AttributeRule{L"inset", A::Inset},
    AttributeRule{L"name", A::Name},
    AttributeRule{L"normalimage", A::PaintImage},
    AttributeRule{L"padding", A::Padding},
    AttributeRule{L"pos", A::Pos},
    AttributeRule{L"pushedbkcolor", A::PaintColor},
    AttributeRule{L"pushedimage", A::PaintImage},
    AttributeRule{L"text", A::SetText},
    AttributeRule{L"textcolor", A::TextColor},
    AttributeRule{L"textpadding", A::TextPadding},
    AttributeRule{L"tooltip", A::ToolTip},
    AttributeRule{L"valign", A::TextVAlign},
    AttributeRule{L"virtualwnd", A::VirtualWnd},
    AttributeRule{L"visible", A::Visible},
    AttributeRule{L"width", A::Width},
};
static_assert(std::ranges::is_sorted(kRules, {}, &AttributeRule::name));

}  // namespace

std::span<const AttributeRule> AttributeRules() { return kRules; }

const AttributeRule* FindAttributeRule(std::wstring_view name) {
    const auto rule = std::ranges::lower_bound(kRules, name, {}, &AttributeRule::name);
    return rule != kRules.end() && rule->name == name ? &*rule : nullptr;
}

// ---- CControlUI

void CControlUI::SetAttribute(std::wstring_view name, std::wstring_view value) {
    if (name.empty()) return;
    const SharedText sharedName(name);
    const SharedText sharedValue(value);  // the text may be this control's own
    auto& attributes = Extras().attributes;
    const auto found = std::ranges::find(attributes, sharedName, &std::pair<SharedText, SharedText>::first);
    if (found == attributes.end()) {
        attributes.emplace_back(sharedName, sharedValue);
        Invalidate();
    } else if (found->second != sharedValue) {
        found->second = sharedValue;
        Invalidate();
    }
    if (const AttributeRule* rule = FindAttributeRule(sharedName.Get())) rule->apply(*this, sharedValue.Get());
}

const SharedText* CControlUI::FindAttribute(const SharedText& key) const {
    if (key.IsEmpty()) return nullptr;
    if (m_extras) {
        for (const auto& [attribute, value] : m_extras->attributes) {
            if (attribute == key) return &value;
        }
    }
    if (m_given) {
        for (const AttributeList::Attribute& attribute : m_given->attributes) {
            if (attribute.name == key) return &attribute.value;
        }
    }
    return nullptr;
}

CDuiString CControlUI::GetAttribute(std::wstring_view name) const {
    const SharedText* const value = FindAttribute(SharedText::Find(name));
    return value ? value->Get() : CDuiString();
}

bool CControlUI::HasAttribute(std::wstring_view name) const { return FindAttribute(SharedText::Find(name)) != nullptr; }

}  // namespace DuiLib
