#pragma once

#include <cstdint>
#include <string>

#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/notify_pump.h"

// What rows and the page do alike. UI turn.
namespace DuiLib {

// Adds the controls of a window, a row's or the page's, to its place and leads their notifications to it through the
// host's pump, under the decimal digits of its address. Returns that name.
inline std::wstring AddToPage(CNotifyPump* window, CControlUI* root, CNotifyPump* host, CContainerUI* place) {
    const std::wstring name = std::to_wstring(reinterpret_cast<std::uintptr_t>(window));
    host->AddVirtualWnd(name, window);
    root->SetVirtualWnd(name);
    place->Add(root);
    return name;
}

// `source` with the first `pattern` in it replaced by `value`. Empty when the pattern is not there: a template without
// its placeholder gives no text at all, on purpose.
inline std::wstring ReplaceFirst(std::wstring source, const std::wstring& value, const std::wstring& pattern) {
    const std::size_t found = source.find(pattern);
    return found == std::wstring::npos ? std::wstring() : source.replace(found, pattern.size(), value);
}

// The toolkit's reference to a resource text: bind='ID'.
inline std::wstring BindText(const std::wstring& resourceId) { return L"bind='" + resourceId + L"'"; }

}  // namespace DuiLib
