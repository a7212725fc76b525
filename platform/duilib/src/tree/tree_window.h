#pragma once

#include <string_view>
#include <unordered_map>

#include "duilib/control.h"

namespace DuiLib {

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

// What a tree of controls needs of the window that shows it; the window implements it. Controls know nothing else of
// windows. UI turn.
class TreeWindow {
public:
    virtual CPaintManagerUI* Manager() = 0;
    virtual NameTable& Names() = 0;
    virtual void Forget(CControlUI& control) = 0;  // it is being destroyed

    virtual void Layout() = 0;  // does what is pending

    virtual void Changed() = 0;                            // there is something to lay out or paint again
    virtual bool WatchesChanges() const = 0;               // whether it wants to hear of Invalidate
    virtual void Invalidate(const CControlUI& shown) = 0;  // its place is to be painted again
    virtual void BeginTicks(CControlUI& control) = 0;      // calls its Tick until that says that all is at rest
    virtual void ToolTipSet(const CControlUI& control, bool changed) = 0;

protected:
    ~TreeWindow() = default;
};

}  // namespace DuiLib
