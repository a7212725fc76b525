#include "tree/control_attributes.h"

#include <algorithm>
#include <array>
#include <functional>
#include <unordered_map>

#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/render_engine.h"
#include "duilib/ui_culture.h"
#include "foundation/diagnostics.h"

namespace DuiLib {

namespace {

// The text itself, or what a bind text stands for in the language in use.
CDuiString Resolve(const SharedText& text) {
    if (!text.Get().Str().starts_with(L"bind='")) return text.Get();
    return UICulture::GetInstance()->GetBindString(text.Get());
}

std::optional<ControlRole> ParseRole(std::wstring_view text) {
    if (text == L"label") return ControlRole::kLabel;
    if (text == L"button") return ControlRole::kButton;
    if (text == L"container") return ControlRole::kContainer;
    if (text == L"progress") return ControlRole::kProgress;
    return {};
}

}  // namespace

// Where values go for which a control has no public setter of one parameter.
struct AttributeAccess {
    using Control = CControlUI;

    static void Name(Control& c, const SharedText& name) { c.SetName(name.Get()); }
    static void Text(Control& c, const SharedText& text) { c.SetText(Resolve(text)); }
    static void ToolTip(Control& c, const SharedText& text) { c.SetToolTip(Resolve(text)); }
    static void VirtualWnd(Control& c, const SharedText& name) { c.SetVirtualWnd(name.Get()); }
    static void Role(Control& c, ControlRole role) { c.m_role = role; }
    static void Padding(Control& c, const CDuiRect& padding) {
        c.m_padding = padding;
        c.NeedLayoutAround();
    }
    static void TextPadding(Control& c, const CDuiRect& padding) {
        c.Extras().textPadding = padding;
        if (c.IsSizedByText()) c.NeedLayout();
    }
    static void Pos(Control& c, const CDuiRect& pos) {
        c.Extras().pos = pos;
        c.NeedLayoutAround();
    }

    // ---- Text style
    static void Style(Control& c, unsigned mask, unsigned bits) { c.SetTextStyle((c.GetTextStyle() & ~mask) | bits); }
    static void Align(Control& c, Alignment align) {
        const unsigned end = align == Alignment::kEnd ? kTextRight : kTextLeft;
        Style(c, kTextCenter | kTextRight, align == Alignment::kCenter ? kTextCenter : end);
    }
    static void VAlign(Control& c, Alignment align) {
        const unsigned end = align == Alignment::kEnd ? kTextBottom : 0;
        Style(c, kTextVCenter | kTextBottom, align == Alignment::kCenter ? kTextVCenter : end);
    }
    static void EndEllipsis(Control& c, bool on) { Style(c, kTextEndEllipsis, on ? kTextEndEllipsis : 0); }

    // ---- Containers; false for a control that is none
    template <auto Member>
    static bool SetInContainer(Control& c, const auto& value) {
        auto* const container = dynamic_cast<CContainerUI*>(&c);
        if (!container) return false;
        container->*Member = value;
        container->NeedLayout();
        return true;
    }
    static bool Inset(Control& c, const CDuiRect& v) { return SetInContainer<&CContainerUI::m_inset>(c, v); }
    static bool ChildPadding(Control& c, int v) { return SetInContainer<&CContainerUI::m_childPadding>(c, v); }
    static bool ChildAlign(Control& c, Alignment v) { return SetInContainer<&CContainerUI::m_childAlign>(c, v); }
    static bool ChildVAlign(Control& c, Alignment v) { return SetInContainer<&CContainerUI::m_childVAlign>(c, v); }
};

// ---- The table

namespace {

template <auto Parse>
using ParsedBy = typename std::invoke_result_t<decltype(Parse), std::wstring_view>::value_type;

template <auto Parse>
AttributeValue Read(const SharedText& text) {
    const auto value = Parse(text.Get());
    return value ? AttributeValue(std::in_place_type<ParsedBy<Parse>>, *value) : AttributeValue();
}

AttributeValue ReadText(const SharedText& text) { return text; }

template <class Value, auto Set>
bool Apply(CControlUI& control, const AttributeValue& value) {
    const Value* const read = std::get_if<Value>(&value);
    if (!read) return false;
    if constexpr (std::is_same_v<std::invoke_result_t<decltype(Set), CControlUI&, Value>, bool>) {
        return std::invoke(Set, control, *read);
    } else {
        std::invoke(Set, control, *read);
        return true;
    }
}

template <class Value, auto Property>
void Paint(ControlLook& look, const AttributeValue& value) {
    const Value* const read = std::get_if<Value>(&value);
    look.*Property = {read ? *read : Value{}, true, read != nullptr};
}

// What the control is, where, and how large: `Set` is a setter of the control, or one of AttributeAccess.
template <auto Parse, auto Set>
constexpr AttributeRule Sets(std::wstring_view name) {
    return {name, Read<Parse>, Apply<ParsedBy<Parse>, Set>, nullptr};
}

// The same for any text.
template <auto Set>
constexpr AttributeRule SetsText(std::wstring_view name) {
    return {name, ReadText, Apply<SharedText, Set>, nullptr};
}

// What painting only reads: a property of ControlLook.
template <auto Parse, auto Property>
constexpr AttributeRule Paints(std::wstring_view name) {
    return {name, Read<Parse>, nullptr, Paint<ParsedBy<Parse>, Property>};
}

// Sorted by name.
using A = AttributeAccess;
constexpr std::array kRules = {
    Sets<ParseAlignX, A::Align>(L"align"),
    Paints<ParseColor, &ControlLook::ground>(L"bkcolor"),
    Paints<ParsePicture, &ControlLook::groundPicture>(L"bkimage"),
    Paints<ParseSize, &ControlLook::round>(L"bkround"),
    Paints<ParseColor, &ControlLook::borderColor>(L"bordercolor"),
    Paints<ParseColor, &ControlLook::borderFill>(L"borderfillcolor"),
    Paints<ParseInt, &ControlLook::borderSize>(L"bordersize"),
    Sets<ParseAlignX, A::ChildAlign>(L"childalign"),
    Sets<ParseInt, A::ChildPadding>(L"childpadding"),
    Sets<ParseAlignY, A::ChildVAlign>(L"childvalign"),
    Paints<ParseColor, &ControlLook::disabledText>(L"disabledtextcolor"),
    Sets<ParseBool, &CControlUI::SetEnabled>(L"enabled"),
    Sets<ParseBool, A::EndEllipsis>(L"endellipsis"),
    Sets<ParseInt, &CControlUI::SetFont>(L"font"),
    Sets<ParseInt, &CControlUI::SetFixedHeight>(L"height"),
    Paints<ParseColor, &ControlLook::hotGround>(L"hotbkcolor"),
    Paints<ParsePicture, &ControlLook::hotPicture>(L"hotimage"),
    Paints<ParseColor, &ControlLook::hotText>(L"hottextcolor"),
    Sets<ParseRect, A::Inset>(L"inset"),
    SetsText<A::Name>(L"name"),
    Paints<ParsePicture, &ControlLook::picture>(L"normalimage"),
    Sets<ParseRect, A::Padding>(L"padding"),
    Sets<ParseRect, A::Pos>(L"pos"),
    Paints<ParseColor, &ControlLook::pushedGround>(L"pushedbkcolor"),
    Paints<ParsePicture, &ControlLook::pushedPicture>(L"pushedimage"),
    Sets<ParseRole, A::Role>(L"role"),
    SetsText<A::Text>(L"text"),
    Sets<ParseColor, &CControlUI::SetTextColor>(L"textcolor"),
    Sets<ParseRect, A::TextPadding>(L"textpadding"),
    SetsText<A::ToolTip>(L"tooltip"),
    Sets<ParseAlignY, A::VAlign>(L"valign"),
    SetsText<A::VirtualWnd>(L"virtualwnd"),
    Sets<ParseBool, &CControlUI::SetVisible>(L"visible"),
    Sets<ParseInt, &CControlUI::SetFixedWidth>(L"width"),
};
static_assert(std::ranges::is_sorted(kRules, {}, &AttributeRule::name));

}  // namespace

std::span<const AttributeRule> AttributeRules() { return kRules; }

const AttributeRule* FindAttributeRule(std::wstring_view name) {
    const auto rule = std::ranges::lower_bound(kRules, name, {}, &AttributeRule::name);
    return rule != kRules.end() && rule->name == name ? &*rule : nullptr;
}

// ---- Looks

namespace {

// Looks at enough to tell most looks apart.
struct HashOfLook {
    std::size_t operator()(const ControlLook* look) const {
        std::size_t hash = 0;
        const auto add = [&hash](auto value) { hash = hash * 31 + std::hash<decltype(value)>{}(value); };
        add(look->ground.value);
        add(look->borderColor.value);
        add(look->borderFill.value);
        add(look->round.value.cx);
        add(look->picture.value.file.Key());
        add(look->groundPicture.value.file.Key());
        return hash;
    }
};

struct SameLook {
    bool operator()(const ControlLook* a, const ControlLook* b) const { return *a == *b; }
};

// Every look that a control has. Never destroyed: controls with static storage may go later.
auto& Looks() {
    static auto& looks =
        *new std::unordered_map<const ControlLook*, std::weak_ptr<const ControlLook>, HashOfLook, SameLook>;
    return looks;
}

}  // namespace

std::shared_ptr<const ControlLook> ShareLook(const ControlLook& look) {
    auto& looks = Looks();
    if (const auto found = looks.find(&look); found != looks.end()) return found->second.lock();
    std::shared_ptr<const ControlLook> shared(new ControlLook(look), [](const ControlLook* unused) {
        Looks().erase(unused);
        delete unused;
    });
    looks.emplace(shared.get(), shared);
    return shared;
}

// ---- Given attributes

namespace {

std::shared_ptr<const ControlLook> LookWith(const ControlLook& look, const AttributeRule& rule,
                                            const AttributeValue& value) {
    ControlLook changed = look;
    rule.paint(changed, value);
    return ShareLook(changed);
}

}  // namespace

void AttributeList::Add(std::wstring_view name, std::wstring_view text) {
    Attribute& added = attributes.emplace_back(SharedText(name), SharedText(text), FindAttributeRule(name));
    if (!added.rule) return;
    added.value = added.rule->read(added.text);
    if (added.rule->paint) look = LookWith(look ? *look : ControlLook{}, *added.rule, added.value);
}

bool AttributeList::Attribute::ApplyTo(CControlUI& control) const {
    if (!rule) return false;
    return rule->apply ? rule->apply(control, value) : !std::holds_alternative<std::monostate>(value);
}

// ---- CControlUI

void CControlUI::SetAttribute(std::wstring_view name, std::wstring_view text) {
    AssertUiTurn();
    if (name.empty()) return;
    const SharedText sharedName(name);
    const SharedText sharedText(text);  // may be this control's own
    auto& attributes = Extras().attributes;
    const auto found = std::ranges::find(attributes, sharedName, &std::pair<SharedText, SharedText>::first);
    const bool changed = found == attributes.end() || found->second != sharedText;
    if (found == attributes.end()) {
        attributes.emplace_back(sharedName, sharedText);
    } else {
        found->second = sharedText;
    }
    if (changed) Invalidate();
    const AttributeRule* const rule = FindAttributeRule(sharedName.Get());
    if (!rule || (rule->paint && !changed)) return;
    const AttributeValue value = rule->read(sharedText);
    if (rule->paint) {
        m_extras->look = LookWith(Look(), *rule, value);
    } else {
        rule->apply(*this, value);
    }
}

const ControlLook& CControlUI::Look() const {
    static const auto& plain =
        *new ControlLook;  // never destroyed, like the controls that may outlive the program's end
    if (m_extras && m_extras->look) return *m_extras->look;
    return m_given && m_given->look ? *m_given->look : plain;
}

const SharedText* CControlUI::FindAttribute(const SharedText& key) const {
    if (key.IsEmpty()) return nullptr;
    if (m_extras) {
        for (const auto& [attribute, text] : m_extras->attributes) {
            if (attribute == key) return &text;
        }
    }
    if (m_given) {
        for (const AttributeList::Attribute& attribute : m_given->attributes) {
            if (attribute.name == key) return &attribute.text;
        }
    }
    return nullptr;
}

CDuiString CControlUI::GetAttribute(std::wstring_view name) const {
    AssertUiTurn();
    const SharedText* const text = FindAttribute(SharedText::Find(name));
    return text ? text->Get() : CDuiString();
}

bool CControlUI::HasAttribute(std::wstring_view name) const {
    AssertUiTurn();
    return FindAttribute(SharedText::Find(name)) != nullptr;
}

}  // namespace DuiLib
