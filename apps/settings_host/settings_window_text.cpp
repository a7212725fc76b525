// The page as text.

#include "base/text.h"
#include "settings_window.h"

namespace settings_host {

namespace {

using DuiLib::CContainerUI;
using DuiLib::CControlUI;
using DuiLib::ControlProgress;
using DuiLib::ControlRole;

constexpr int kBarCells = 20;

// The first control below `control`, itself included, that is the one; null when there is none.
template <class Predicate>
CControlUI* FirstBelow(CControlUI* control, const Predicate& isTheOne) {
    if (isTheOne(*control)) return control;
    auto* const container = dynamic_cast<CContainerUI*>(control);
    for (int i = 0; container != nullptr && i < container->GetCount(); ++i) {
        if (CControlUI* const found = FirstBelow(container->GetItemAt(i), isTheOne)) return found;
    }
    return nullptr;
}

CControlUI* FindBelow(CControlUI* control, std::wstring_view nameEnd) {
    return FirstBelow(control, [nameEnd](const CControlUI& at) { return at.GetName().Str().ends_with(nameEnd); });
}

CControlUI* FindBelow(CControlUI* control, ControlRole role) {
    return FirstBelow(control, [role](const CControlUI& at) { return at.GetRole() == role; });
}

std::string TextOf(CControlUI* control) {
    return control == nullptr ? std::string() : base::Utf8FromWide(control->GetText());
}

bool Shown(CControlUI* control) { return control != nullptr && IsShown(control); }

std::string WithToolTip(CControlUI* control) {
    if (!Shown(control) || control->GetToolTip().IsEmpty()) return {};
    return "  (tip: " + base::Utf8FromWide(control->GetToolTip()) + ")";
}

std::string Bar(CControlUI* control) {
    const ControlProgress progress = control == nullptr ? ControlProgress{} : control->GetProgress();
    const int done = progress.whole == 0 ? 0 : kBarCells * progress.done / progress.whole;
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
    const std::string bar = Shown(label) ? Bar(FindBelow(row, ControlRole::kProgress)) + " " : std::string();
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

std::string SettingsWindow::PageText() {
    std::string text;
    for (const wchar_t* const heading : {L"DeviceUpdateTitle", L"topName"}) {
        CControlUI* const control = Find(heading);
        if (Shown(control)) text += "  " + TextOf(control) + "\n";
    }
    auto* const list = dynamic_cast<CContainerUI*>(Find(L"accessVer"));
    for (int i = 0; list != nullptr && i < list->GetCount(); ++i) text += RowText(list->GetItemAt(i));
    return text;
}

}  // namespace settings_host
