#pragma once

#include <string_view>
#include <unordered_map>

#include "duilib/shared_text.h"

namespace DuiLib {

class CControlUI;

// The names of one window: a name finds the control that took it last. When that one goes or takes another name, the
// one that took it last among the others is found. The controls of a name hang in a list that runs through themselves,
// so each operation takes constant time however many share the name. Empty names are not kept.
class NameTable {
public:
    void Add(CControlUI* control);     // under the name that it has
    void Remove(CControlUI* control);  // from the name that it has; nothing when it was not added
    CControlUI* Find(std::wstring_view name) const;

private:
    // By the name's SharedText::Key; the controls in the list keep the text alive.
    std::unordered_map<const void*, CControlUI*> m_last;
};

}  // namespace DuiLib
