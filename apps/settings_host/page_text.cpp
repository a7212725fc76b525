#include "page_text.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "base/text.h"

namespace settings_host {

namespace {

using DuiLib::CContainerUI;
using DuiLib::CControlUI;

constexpr int kBarCells = 20;

// The first control below `control`, itself included, whose name ends so; null when there is none.
CControlUI* FindBelow(CControlUI* control, std::wstring_view nameEnd) {
    if (control->GetName().Str().ends_with(nameEnd)) return control;
    auto* const container = dynamic_cast<CContainerUI*>(control);
    for (int i = 0; container != nullptr && i < container->GetCount(); ++i) {
        if (CControlUI* const found = FindBelow(container->GetItemAt(i), nameEnd)) return found;
    }
    return nullptr;
}

std::string TextOf(CControlUI* control) {
    return control == nullptr ? std::string() : base::Utf8FromWide(control->GetText());
}

bool Shown(CControlUI* control) { return control != nullptr && IsShown(control); }

std::string WithToolTip(CControlUI* control) {
    if (!Shown(control) || control->GetToolTip().IsEmpty()) return {};
    return "  (tip: " + base::Utf8FromWide(control->GetToolTip()) + ")";
}

// The done part of the bar from the layer's "pos": "fill,0,width,0".
std::string Bar(CControlUI* layer) {
    int fill = 0;
    int width = 0;
    if (layer != nullptr) {
        std::sscanf(base::Utf8FromWide(layer->GetAttribute(L"pos")).c_str(), "%d,%*d,%d,%*d", &fill, &width);
    }
    const int done = width <= 0 ? 0 : std::clamp(kBarCells * fill / width, 0, kBarCells);
    return "[" + std::string(static_cast<std::size_t>(done), '#') +
           std::string(static_cast<std::size_t>(kBarCells - done), '.') + "]";
}

std::string UpdateText(CControlUI* row) {
    if (CControlUI* const button = FindBelow(row, L"updateBtn"); Shown(button)) {
        return "<" + TextOf(button) + ">" + WithToolTip(button);
    }
    CControlUI* const progress = FindBelow(row, L"progress");
    if (!Shown(progress)) return {};
    CControlUI* const label = FindBelow(row, L"progressLabel");
    const std::string bar = Shown(label) ? Bar(FindBelow(row, L"progressLayout")) + " " : std::string();
    return bar + TextOf(progress) + WithToolTip(FindBelow(row, L"stopBtn"));
}

std::string Indented(const std::string& text) {
    std::string lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines += "        " + text.substr(start, end - start) + "\n";
        start = end + 1;
    }
    return lines;
}

std::string RowText(CControlUI* row) {
    if (!Shown(FindBelow(row, L"hor"))) return {};
    std::string text = "    " + TextOf(FindBelow(row, L"desName")) + " | " + TextOf(FindBelow(row, L"version")) +
                       " | " + UpdateText(row) + "\n";
    if (CControlUI* const information = FindBelow(row, L"devInfo"); Shown(information)) {
        text += Indented(TextOf(information));
    }
    return text;
}

}  // namespace

std::string PageText(SettingsWindow& window) {
    std::string text;
    for (const wchar_t* const heading : {L"DeviceUpdateTitle", L"topName"}) {
        CControlUI* const control = window.Find(heading);
        if (Shown(control)) text += "  " + TextOf(control) + "\n";
    }
    auto* const list = dynamic_cast<CContainerUI*>(window.Find(L"accessVer"));
    for (int i = 0; list != nullptr && i < list->GetCount(); ++i) text += RowText(list->GetItemAt(i));
    return text;
}

}  // namespace settings_host
