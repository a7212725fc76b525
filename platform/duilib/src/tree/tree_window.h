#pragma once

#include "duilib/control.h"

namespace DuiLib {

class NameTable;

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
