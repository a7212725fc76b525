#pragma once

#include <map>
#include <string>
#include <string_view>

#include "duilib/dui_string.h"
#include "duilib/export.h"
#include "duilib/geometry.h"

namespace DuiLib {

class CControlUI;
class CNotifyPump;

inline constexpr const wchar_t* kNotifyClick = L"click";
inline constexpr const wchar_t* kNotifyCancel = L"cancel";  // Escape, to the control that holds the input

// One notification: something happened to a control. Lives only during the call.
struct TNotifyUI {
    CDuiString type;               // for example "click"
    CControlUI* sender = nullptr;  // may be null
    CDuiString virtualWnd;         // name of the sender's virtual window; empty for the page's own pump
    CDuiPoint mouse;               // [device px] in the window, for notifications that a pointer caused
};

// Which member function handles which notification. A null or empty `control` matches every sender; the array ends with
// an entry whose handler is null. A class's map names its base's map, which is asked when no entry matches.
struct DUI_MSGMAP_ENTRY {
    const wchar_t* type;
    const wchar_t* control;
    void (CNotifyPump::*handler)(TNotifyUI&);
};

struct DUI_MSGMAP {
    const DUI_MSGMAP* base;
    const DUI_MSGMAP_ENTRY* entries;
};

// A target of notifications. A page's pump also passes notifications on to virtual windows: pumps that were registered
// under a name with AddVirtualWnd, for controls below one that carries the name (CControlUI::SetVirtualWnd).
class DUILIB_API CNotifyPump {
public:
    CNotifyPump();
    ~CNotifyPump();
    CNotifyPump(const CNotifyPump&) = delete;
    CNotifyPump& operator=(const CNotifyPump&) = delete;

    // The two virtual operations, in slot order.
    virtual const DUI_MSGMAP* GetMessageMap() const;  // static data
    virtual void OnClick(TNotifyUI& message);         // does nothing here

    // Registers a pump, which stays its owner's and must outlive the page's controls. A name that is there already is
    // taken over. False for an empty name or a null pump.
    bool AddVirtualWnd(std::wstring_view name, CNotifyPump* pump);
    bool RemoveVirtualWnd(std::wstring_view name);  // false when there is none

    // Hands the message to the virtual window that it names, or through this pump's own message map when it names none
    // or one that is not registered.
    void NotifyPump(TNotifyUI& message);

protected:
    static const DUI_MSGMAP s_messageMap;  // empty, without a base

private:
    bool Dispatch(TNotifyUI& message);
    std::map<std::wstring, CNotifyPump*, std::less<>> m_virtualWnds;
};

}  // namespace DuiLib
