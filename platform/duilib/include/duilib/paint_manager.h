#pragma once

#include <memory>
#include <string_view>

#include "duilib/export.h"
#include "duilib/geometry.h"
#include "duilib/notify_pump.h"
#include "duilib/shared_text.h"

namespace DuiLib {

class CControlUI;

enum class DuiKey { kTab, kShiftTab, kEnter, kSpace };

// What text is measured and painted on; belongs to a paint manager.
class PaintDC;

// One window's tree: finds its controls by name or place, lays them out, and turns input into notifications. Without a
// native window it is a complete model of one. All operations run under the UI turn, which it takes itself for input
// and layout.
class DUILIB_API CPaintManagerUI {
public:
    CPaintManagerUI();
    ~CPaintManagerUI();  // deletes the root
    CPaintManagerUI(const CPaintManagerUI&) = delete;
    CPaintManagerUI& operator=(const CPaintManagerUI&) = delete;

    // Makes `root` the window's tree and owns it; the one before is deleted.
    void AttachRoot(CControlUI* root);
    CControlUI* GetRoot() const;

    // The control that took the name last (was added to the tree, or renamed, last); null when none has it.
    CControlUI* FindControl(std::wstring_view name) const;

    // The topmost visible control at a point of the window [device px] that takes the pointer: the enabled button that
    // is drawn last, else the innermost control; null outside. Controls end at the edges of what they lie in, and a
    // disabled container disables the buttons in it.
    CControlUI* FindControl(CDuiPoint point);

    PaintDC* GetPaintDC() const;

    void SetClientSize(CDuiSize size);  // [device px] of the window
    CDuiSize GetClientSize() const;

    // Does the layout that is pending, if any. Getters of places do so by themselves.
    void Layout();
    void NeedLayout();

    // Pumps that hear this window's notifications, in the order of adding; not owned.
    void AddNotifyPump(CNotifyPump* pump);
    void RemoveNotifyPump(CNotifyPump* pump);

    // Sends a notification to the pumps, with the virtual window of the sender's nearest ancestor (itself included)
    // that has one.
    void SendNotify(CControlUI* sender, std::wstring_view type, CDuiPoint mouse = {});

    // Pointer input at a point of the window [device px]. Press and release on the same enabled button is a click.
    // ButtonUp returns whether it clicked something. (A mouse of the model: SDL or Win32 feeds the same functions
    // later.)
    void MouseMove(CDuiPoint point);
    bool ButtonDown(CDuiPoint point);
    bool ButtonUp(CDuiPoint point);
    CControlUI* GetHovered() const;  // what the pointer was over when it moved last; null when that is gone

    // Keyboard input: Tab moves the focus through the shown, enabled buttons, Enter and Space click the focused one.
    // Returns whether the key did something.
    bool KeyDown(DuiKey key);
    CControlUI* GetFocus() const;  // null when nothing has it, or when what had it is gone

private:
    struct State;
    struct HitTest;
    void Attached(CControlUI* control);                  // a control of this window's tree came
    void Gone(CControlUI* control);                      // ... is being destroyed
    void Renamed(CControlUI* control, SharedText name);  // ... takes a name
    static void LayOutEveryWindowAgain();

    std::shared_ptr<State> m_state;  // shared with calls that are under way, so that a handler may destroy the window
    friend class CResourceManager;
    friend class CRenderEngine;
    friend class UICulture;
    friend class CControlUI;
    friend class CContainerUI;
};

}  // namespace DuiLib
