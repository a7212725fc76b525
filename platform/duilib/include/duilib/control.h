#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "duilib/dui_string.h"
#include "duilib/export.h"
#include "duilib/geometry.h"
#include "duilib/shared_text.h"

namespace DuiLib {

class Canvas;
class CContainerUI;
class CPaintManagerUI;
class TreeWindow;
struct AttributeList;
struct ControlExtras;
struct ControlLook;

enum class LayoutAxis : std::uint8_t { kHorizontal, kVertical };
enum class ScrollStep : std::uint8_t { kNotch, kLine, kPage, kWhole };  // of the wheel, ..., from end to end

// What a control is to whoever reads a page instead of looking at it: a screen reader, or a transcript. What it says is
// its text and its tool tip, whether it is shown is IsVisible's.
enum class ControlRole : std::uint8_t {
    kNone,       // an empty place, or a decoration
    kLabel,      // says its text
    kButton,     // says its text; can be pressed
    kContainer,  // says nothing itself
    kProgress,   // says how much of something is done
};

// [design px] A bar's whole length and the part of it that is done, 0 to `whole`. The whole is 0 while nothing is
// known.
struct ControlProgress {
    int done = 0;
    int whole = 0;
};

// One control of a page: a node with a name, a text, attributes and a place.
//
// A control belongs to the container that it was added to, which deletes it; until then, to whoever made it. All
// operations run under the UI turn. Attribute sizes and the fixed-size setters take design pixels, which the toolkit
// multiplies by the scale and rounds to the nearest, halves up; what is read back is in device pixels.
class DUILIB_API CControlUI {
public:
    CControlUI();
    virtual ~CControlUI();
    CControlUI(const CControlUI&) = delete;
    CControlUI& operator=(const CControlUI&) = delete;

    // The class name that layout files use, for example L"Button".
    virtual std::wstring_view GetClass() const;

    // Within a paint manager a name finds the control that took it last.
    virtual const CDuiString& GetName() const;
    virtual void SetName(std::wstring_view name);

    virtual const CDuiString& GetText() const;
    virtual void SetText(std::wstring_view text);
    virtual const CDuiString& GetToolTip() const;
    virtual void SetToolTip(std::wstring_view text);

    // The control's own flag: a visible control in a hidden container is not shown. Hidden controls take no room.
    virtual bool IsVisible() const;
    virtual void SetVisible(bool visible);

    // Sets a property by its name in layout files (docs/layout.md). A value that cannot be read, or a name that nobody
    // knows, has no effect beyond being kept. Returns by value the text last given, empty when there is none.
    virtual void SetAttribute(std::wstring_view name, std::wstring_view value);
    virtual CDuiString GetAttribute(std::wstring_view name) const;
    virtual bool HasAttribute(std::wstring_view name) const;

    // [device px] as laid out, pending layout done first; 0 while itself hidden or outside a tree, but kept in a hidden
    // container. A fixed size is what every layout gives, so asking for that needs no layout and is cheap.
    virtual int GetHeight();
    virtual int GetWidth();
    virtual CDuiRect GetPos();  // in the window; empty while hidden in any way

    virtual void SetFixedHeight(int height);  // [design px]; 0: the layout decides
    virtual void SetFixedWidth(int width);    // [design px]; 0: the layout decides
    void SetFixedHeightInPixels(int height);  // [device px]
    virtual int GetFixedHeight() const;       // [device px]
    virtual int GetFixedWidth() const;        // [device px]

    void SetFont(int index);  // into the fonts of CResourceManager; -1 is the default font
    int GetFont() const;
    void SetTextColor(CDuiColor color);
    CDuiColor GetTextColor() const;
    void SetTextStyle(unsigned style);  // CRenderEngine's text flags
    unsigned GetTextStyle() const;

    // [device px] The rectangle that the text takes in this control's font within the available size, text padding
    // included, at 0,0.
    virtual CDuiRect GetTextRect(CDuiSize available);

    // Notifications of this control and of what lies below it go to the pump registered under this name.
    void SetVirtualWnd(std::wstring_view name);
    const CDuiString& GetVirtualWnd() const;

    virtual bool IsEnabled() const;
    virtual void SetEnabled(bool enabled);

    CContainerUI* GetParent() const;
    CPaintManagerUI* GetManager() const;  // null outside a window's tree

    // As the attribute "role" says, else as its class is.
    ControlRole GetRole() const;

    // How much is done where the role is kProgress: such a control covers, by its "pos", what of a bar is not yet done.
    ControlProgress GetProgress() const;

    // Marks the control, and what its size bears on, for the next layout.
    void NeedLayout();

    // Marks the control's place for the next painting. What changes a control's look does so by itself.
    void Invalidate();

protected:
    // ---- What a class of controls tells the layout. All [device px], the space around the control excluded. They are
    // asked only for visible controls, and their answers are kept until NeedLayout.
    virtual int ContentWidth();                       // with nothing broken; 0 here
    virtual int ContentHeight(int width);             // at that width; 0 here
    virtual bool ContentIsFlexible(LayoutAxis axis);  // takes what others leave; true here, where there is no content
    virtual void ArrangeChildren() {}                 // this control's own size has been set
    virtual const std::vector<CControlUI*>& Children() const;  // in the order of drawing

    virtual ControlRole ClassRole() const { return ControlRole::kNone; }
    virtual bool TakesPointer() const { return false; }   // whether it can be clicked
    virtual bool IsSizedByText() const { return false; }  // whether the text bears on the size

    // Painted over the children; `place` is the control's own, in the window [device px].
    virtual void PaintOver(Canvas&, const CDuiRect&) {}

    // ---- What a class of controls does whose content moves in it; nothing here. The window calls it.
    using TimePoint = std::chrono::steady_clock::time_point;
    // Whether it is one. Such a control cuts all that lies in it at its edge, the ring around the focus as well.
    virtual bool MovesContent() const { return false; }
    // So many steps down, up where negative. False where all is in sight.
    virtual bool Scroll(ScrollStep, double /*steps*/) { return false; }
    // Shows the control, which lies in this one, whole, or its top.
    virtual void EnsureVisible(CControlUI&, bool /*smoothly*/) {}
    // A press at a point within the control [device px]: where it returns true, the pointer is followed until EndDrag.
    virtual bool BeginDrag(CDuiPoint) { return false; }
    virtual void DragTo(CDuiPoint) {}
    virtual void EndDrag() {}
    // Moves on; true while there is more to move.
    virtual bool Tick(TimePoint) { return false; }

    CDuiSize MeasureText(int width) const;  // text padding included; wrapped at the width if the text style wraps
    bool Wraps() const;

private:
    // Those who lay controls out, each for the children of its class:
    friend class CContainerUI;
    friend class CScrollViewUI;
    friend struct LineLayout;
    // The window that shows them, finds them by place and paints them:
    friend class CPaintManagerUI;
    friend struct ControlPainter;
    // Those who give them what they are made of: a layout file's attributes, any attribute, a place among equal names.
    friend class MarkupBuilder;
    friend struct AttributeAccess;
    friend class NameTable;

    // ---- Layout, see control_layout.cpp
    int PreferredWidth();            // fixed, else of the content
    int PreferredHeight(int width);  // fixed, else of the content
    int FillWidth(int available);    // fixed, else what is available without the space around
    int FillHeight(int available);
    bool IsFlexible(LayoutAxis axis);
    bool HasPlace(LayoutAxis axis) const;  // by "pos"
    bool IsFloating() const;               // by "pos"
    CDuiRect PosInPixels() const;
    CDuiRect Margin() const;
    void Arrange(const CDuiRect& place);  // relative to the parent
    void ForgetSizes();
    void ForgetSizesOfTree();
    void NeedLayoutAround();         // when the control itself comes, goes or moves
    bool IsShown() const;            // attached, and visible with all that it lies in
    CDuiRect PlaceInWindow() const;  // as laid out last

    // ---- The tree
    void AttachTree(TreeWindow& window);
    ControlExtras& Extras();
    const ControlLook& Look() const;                                // as attributes say
    const SharedText* FindAttribute(const SharedText& name) const;  // null when it was never given

    CContainerUI* m_parent = nullptr;
    TreeWindow* m_window = nullptr;         // that shows the tree; null while none does
    CControlUI* m_earlierOfName = nullptr;  // NameTable's list of those that share the name
    CControlUI* m_laterOfName = nullptr;
    SharedText m_name;
    SharedText m_text;
    std::shared_ptr<const AttributeList> m_given;  // attributes that a layout file gave
    std::unique_ptr<ControlExtras> m_extras;       // what few controls have

    CDuiRect m_padding;  // [design px] around the control
    CDuiRect m_place;    // [device px] within the parent
    int m_fixedWidth = 0;
    int m_fixedHeight = 0;
    int m_font = -1;
    CDuiColor m_textColor = 0xFF000000;
    unsigned m_textStyle;

    int m_contentWidth = 0;   // valid with m_contentWidthKnown
    int m_contentHeight = 0;  // at m_contentHeightFor, valid with m_contentHeightKnown
    int m_contentHeightFor = 0;
    ControlRole m_role = ControlRole::kNone;  // by attribute
    bool m_visible : 1 = true;
    bool m_enabled : 1 = true;
    bool m_fixedHeightInPixels : 1 = false;
    bool m_arrangePending : 1 = true;
    bool m_contentWidthKnown : 1 = false;
    bool m_contentHeightKnown : 1 = false;
    bool m_flexibleKnown : 1 = false;  // along the class's own axis, see IsFlexible
    bool m_flexible : 1 = false;
};

// A control that shows text on one line, and is as large as that text unless its size is fixed.
class DUILIB_API CLabelUI : public CControlUI {
public:
    std::wstring_view GetClass() const override;

protected:
    int ContentWidth() override;
    int ContentHeight(int width) override;
    bool ContentIsFlexible(LayoutAxis axis) override;  // a wrapping text adapts its width
    ControlRole ClassRole() const override { return ControlRole::kLabel; }
    bool IsSizedByText() const override { return true; }
};

// A label whose text wraps.
class DUILIB_API CTextUI : public CLabelUI {
public:
    CTextUI();
    std::wstring_view GetClass() const override;
};

// A label that a click, Enter or Space presses: it sends the notification "click".
class DUILIB_API CButtonUI : public CLabelUI {
public:
    CButtonUI();
    std::wstring_view GetClass() const override;

protected:
    ControlRole ClassRole() const override { return ControlRole::kButton; }
    bool TakesPointer() const override { return true; }
};

}  // namespace DuiLib
