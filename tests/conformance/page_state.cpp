#include "page_state.h"

#include <set>

#include "base/text.h"
#include "duilib/container.h"
#include "duilib/control.h"

namespace {

using nlohmann::json;

// Every attribute that the module sets.
constexpr const wchar_t* kAttributes[] = {L"bkcolor",    L"bkimage", L"bkround",      L"borderfillcolor",
                                          L"bordersize", L"height",  L"hottextcolor", L"normalimage",
                                          L"padding",    L"pos",     L"textcolor",    L"width"};

void CollectNames(DuiLib::CControlUI* control, std::set<std::wstring>& names) {
    if (!control->GetName().IsEmpty()) names.insert(control->GetName().Str());
    auto* const container = dynamic_cast<DuiLib::CContainerUI*>(control);
    if (container == nullptr) return;
    for (int i = 0; i < container->GetCount(); ++i) CollectNames(container->GetItemAt(i), names);
}

json ControlState(DuiLib::CControlUI& control) {
    json state = {{"visible", control.IsVisible()}};
    const std::wstring& name = control.GetName().Str();
    if (!control.GetText().IsEmpty()) state["text"] = base::Utf8FromWide(control.GetText().Str());
    if (!control.GetToolTip().IsEmpty()) state["tooltip"] = base::Utf8FromWide(control.GetToolTip().Str());
    if (control.GetFont() != -1) state["font"] = control.GetFont();
    if (!name.ends_with(L"progressLayout")) {  // "pos" governs its size too
        if (control.GetFixedHeight() != 0) state["fixedHeight"] = control.GetFixedHeight();
        if (control.GetFixedWidth() != 0) state["fixedWidth"] = control.GetFixedWidth();
    }
    for (const wchar_t* const attribute : kAttributes) {
        if (!control.HasAttribute(attribute)) continue;
        state["@" + base::Utf8FromWide(attribute)] = base::Utf8FromWide(control.GetAttribute(attribute).Str());
    }
    return state;
}

json Fresh(const std::string& property) {
    if (property == "text" || property == "tooltip") return "";
    if (property == "font") return -1;
    if (property == "fixedHeight" || property == "fixedWidth") return 0;
    return nullptr;
}

json ChangedProperties(const json& before, const json& after) {
    json changed = json::object();
    for (const auto& [property, value] : after.items()) {
        if (!before.contains(property) || before[property] != value) changed[property] = value;
    }
    for (const auto& [property, value] : before.items()) {
        if (!after.contains(property)) changed[property] = Fresh(property);
    }
    return changed;
}

}  // namespace

json PageState(DuiLib::CPaintManagerUI& manager) {
    std::set<std::wstring> names;
    CollectNames(manager.GetRoot(), names);
    json state = json::object();
    for (const std::wstring& name : names) state[base::Utf8FromWide(name)] = ControlState(*manager.FindControl(name));
    return state;
}

PageDifference Compare(const json& before, const json& after) {
    PageDifference difference;
    for (const auto& [name, state] : after.items()) {
        if (!before.contains(name)) {
            difference.controls[name] = state;
        } else if (json changed = ChangedProperties(before[name], state); !changed.empty()) {
            difference.controls[name] = std::move(changed);
        }
    }
    for (const auto& [name, state] : before.items()) {
        if (!after.contains(name)) difference.removed.push_back(name);
    }
    return difference;
}
