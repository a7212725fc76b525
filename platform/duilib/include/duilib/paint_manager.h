#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "duilib/export.h"
#include "duilib/geometry.h"
#include "duilib/notify_pump.h"
#include "duilib/shared_text.h"

namespace DuiLib {

class CControlUI;
class PaintSurface;

enum class DuiKey {
    kTab,
    kShiftTab,
    kEnter,
    kSpace,
    kEscape,
    kUp,
    kDown,
    kPageUp,
    kPageDown,
    kHome,
    kEnd,
};

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

    // ---- Input
    // Pointer input at a point of the window [device px]. Press and release on the same enabled button is a click.
    // ButtonUp returns whether it clicked something. The wheel moves the scroll view under the pointer by so many
    // notches, down where positive; a touchpad sends parts of one.
    void MouseMove(CDuiPoint point);
    void MouseLeave();
    bool ButtonDown(CDuiPoint point);
    bool ButtonUp(CDuiPoint point);
    bool MouseWheel(CDuiPoint point, double notches);
    CControlUI* GetHovered() const;  // what the pointer was over when it moved last; null when that is gone

    // Keyboard input: Tab moves the focus through the shown, enabled buttons, Enter and Space click the focused one,
    // arrows, Page, Home and End keys scroll. Escape takes a tool tip away; without one it is the notification "cancel"
    // of the control that has the input for itself. Returns whether the key did something.
    bool KeyDown(DuiKey key);
    CControlUI* GetFocus() const;        // null when nothing has it, or when what had it is gone
    void SetFocus(CControlUI* control);  // as the keyboard would; null takes it away

    // While this control is shown, input goes only to it and what lies in it; null ends that.
    void SetModal(CControlUI* control);

    // Scrolls so that the control is seen.
    void EnsureVisible(CControlUI& control);

    // ---- Painting
    // Paints what has changed since the last call, pending layout done first, and returns where that was [device px];
    // nothing where nothing changed. A surface that is not the window's size is made so; one that is not the last
    // call's is painted whole.
    std::vector<CDuiRect> Paint(PaintSurface& surface);
    void InvalidateAll();

    // Called once after each painting when there is something to lay out or paint again, or something came or went in a
    // place that is hidden, on whichever thread made the change, under the UI turn: it wakes whoever paints. What Tick
    // and Paint do themselves wakes nobody: paint after Tick.
    void SetWakeUp(std::function<void()> wakeUp);

    // What moves by itself: scrolling, and tool tips that wait for their time. Returns when it wants to be called next;
    // nothing while all is at rest.
    using TimePoint = std::chrono::steady_clock::time_point;
    std::optional<TimePoint> Tick(TimePoint now);
    std::optional<TimePoint> NextTick(TimePoint now);  // the same without a step: painting may have started something

    CControlUI* GetToolTipOwner() const;  // whose tool tip is shown; null for none

private:
    struct State;
    struct HitTest;
    void Forget(CControlUI& control);
    void LayOutAgain();  // all of it, as nothing is as large as it was

    void Changed();
    void Invalidate(const CControlUI& control);
    void Invalidate(const CDuiRect& area);
    void LayOutForPainting();
    void PaintAreas(PaintSurface& surface, const std::vector<CDuiRect>& areas);
    void BeginTicks(CControlUI& control);
    CControlUI* InputRoot() const;
    CControlUI* Hit(CDuiPoint point) const;
    void UpdateHovered();
    void UpdateHot();
    void MoveFocus(bool forward);
    bool Scroll(DuiKey key);
    void ToolTipSet(const CControlUI& control, bool changed);
    void UpdateToolTipOwner();
    void UpdateToolTipPlace();
    void DismissToolTip();

    std::shared_ptr<State> m_state;  // shared with calls that are under way, so that a handler may destroy the window
    friend struct ControlPainter;    // paints what the State says of the pointer and the focus
};

}  // namespace DuiLib
