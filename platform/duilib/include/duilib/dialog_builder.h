#pragma once

#include <string>
#include <string_view>

#include "duilib/dui_string.h"
#include "duilib/export.h"

namespace DuiLib {

class CControlUI;
class CPaintManagerUI;

// Makes controls of classes that the toolkit does not know.
class IDialogBuilderCallback {
public:
    // The new control, owned by the caller; null when the class is not known.
    virtual CControlUI* CreateControl(std::wstring_view className) = 0;

protected:
    ~IDialogBuilderCallback() = default;
};

// Builds a tree of controls from a layout file (docs/layout.md).
class DUILIB_API CDialogBuilder {
public:
    // The root of the new tree, owned by the caller until it is added to a container. `file` is relative to the
    // resource base of CResourceManager; what is parsed is kept while the file stays the same, and a changed file is
    // seen at once. `type` is the type of a packed resource, which this toolkit does not have: null for a plain file.
    // The callback is asked for elements that the toolkit does not know. `manager` is not needed: a tree joins a window
    // when it is added to it. With a parent, the root is added to it.
    //
    // Null when the file cannot be read, is not well formed, names an unknown element, or when the parent is no
    // container: the reason, with file and line, is in GetError() and goes to the toolkit's diagnostics
    // (duilib/diagnostics.h). What a control cannot do with an attribute is a warning there, once for each attribute of
    // a file.
    CControlUI* Create(std::wstring_view file, const wchar_t* type = nullptr,
                       IDialogBuilderCallback* callback = nullptr, CPaintManagerUI* manager = nullptr,
                       CControlUI* parent = nullptr);

    const CDuiString& GetError() const { return m_error; }

private:
    CDuiString m_error;
};

}  // namespace DuiLib
