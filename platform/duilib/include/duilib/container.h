#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "duilib/control.h"

namespace DuiLib {

enum class Alignment : std::uint8_t;

// A control that owns others and lays them one over the other, each in its own rectangle or over the whole. A container
// without a fixed size is as large as its content. A child's "pos" places it freely: where right lies beyond left, or
// bottom beyond top, it is the place in that direction; an extent of 0 or less leaves that dimension, offset and size,
// to the layout. So "44,0,120,0" is a layer from 44 to 120 over the full height, and "120,0,120,0" one that the layout
// makes as wide as its "width", or as the container. docs/layout.md tells how sizes come about.
class DUILIB_API CContainerUI : public CControlUI {
public:
    CContainerUI();
    ~CContainerUI() override;
    std::wstring_view GetClass() const override;

    // Appends a control and owns it from then on. False, and nothing changed, for null or a control that has a parent.
    virtual bool Add(CControlUI* control);
    virtual bool Remove(CControlUI* control);  // deletes it; false when it is not a child
    virtual void RemoveAll();                  // deletes every child
    virtual int GetCount() const;
    virtual CControlUI* GetItemAt(int index) const;  // null outside 0..GetCount()-1

protected:
    int ContentWidth() override;
    int ContentHeight(int width) override;
    bool ContentIsFlexible(LayoutAxis axis) override;
    void ArrangeChildren() override;
    const std::vector<CControlUI*>& Children() const override { return m_items; }
    ControlRole ClassRole() const override { return ControlRole::kContainer; }

    // ---- For layouts. All [device px].
    CDuiRect Inset() const;      // as thicknesses
    CDuiRect InnerRect() const;  // this control without its inset, at the inset's corner
    int ChildPadding() const;    // between neighbours
    static bool InFlow(const CControlUI& child);
    void Place(CControlUI& child, CDuiRect place);             // mirrors where the language asks for it
    void PlaceOver(CControlUI& child, const CDuiRect& inner);  // by "pos", size and alignment
    int AlignX(int space) const;                               // the offset within unused space
    int AlignY(int space) const;

private:
    friend class CControlUI;        // takes itself out when it is destroyed
    friend struct AttributeAccess;  // sets what attributes say
    friend struct LineLayout;       // arranges the children of rows and columns
    void Forget(CControlUI* child);

    std::vector<CControlUI*> m_items;
    CDuiRect m_inset;        // [design px]
    int m_childPadding = 0;  // [design px]
    Alignment m_childAlign{};
    Alignment m_childVAlign{};
};

// Children from top to bottom: each has its fixed height, or the height of its content; children without either share
// what is left.
class DUILIB_API CVerticalLayoutUI : public CContainerUI {
public:
    std::wstring_view GetClass() const override;

protected:
    int ContentWidth() override;
    int ContentHeight(int width) override;
    bool ContentIsFlexible(LayoutAxis axis) override;
    void ArrangeChildren() override;
};

// Children side by side, in the direction of reading; widths as CVerticalLayoutUI does heights.
class DUILIB_API CHorizontalLayoutUI : public CContainerUI {
public:
    std::wstring_view GetClass() const override;

protected:
    int ContentWidth() override;
    int ContentHeight(int width) override;
    bool ContentIsFlexible(LayoutAxis axis) override;
    void ArrangeChildren() override;
};

}  // namespace DuiLib
