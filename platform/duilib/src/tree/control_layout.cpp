// How one control takes part in the layout. A control's sizes are kept until NeedLayout, which marks the control and
// what lies around it up to the root; Arrange then enters marked or resized subtrees only.
#include <algorithm>

#include "duilib/container.h"
#include "duilib/control.h"
#include "duilib/resource_manager.h"
#include "foundation/diagnostics.h"
#include "foundation/geometry_math.h"
#include "tree/control_attributes.h"
#include "tree/tree_window.h"

namespace DuiLib {

int CControlUI::ContentWidth() { return 0; }
int CControlUI::ContentHeight(int) { return 0; }
bool CControlUI::ContentIsFlexible(LayoutAxis) { return true; }

int CControlUI::PreferredWidth() {
    if (m_fixedWidth) return GetFixedWidth();
    if (!m_contentWidthKnown) {
        m_contentWidth = ContentWidth();
        m_contentWidthKnown = true;
    }
    return m_contentWidth;
}

int CControlUI::PreferredHeight(int width) {
    if (m_fixedHeight) return GetFixedHeight();
    if (!m_contentHeightKnown || m_contentHeightFor != width) {
        m_contentHeight = ContentHeight(width);
        m_contentHeightFor = width;
        m_contentHeightKnown = true;
    }
    return m_contentHeight;
}

int CControlUI::FillWidth(int available) {
    if (m_fixedWidth) return GetFixedWidth();
    const CDuiRect margin = Margin();
    return std::max(0, ClampExtent(std::int64_t{available} - margin.left - margin.right));
}

int CControlUI::FillHeight(int available) {
    if (m_fixedHeight) return GetFixedHeight();
    const CDuiRect margin = Margin();
    return std::max(0, ClampExtent(std::int64_t{available} - margin.top - margin.bottom));
}

bool CControlUI::IsFlexible(LayoutAxis axis) {
    if (axis == LayoutAxis::kHorizontal ? m_fixedWidth : m_fixedHeight) return false;
    return ContentIsFlexible(axis);
}

CDuiRect CControlUI::Margin() const { return ScaleThickness(m_padding); }

// The root has the window for itself, so "pos" means nothing there.
bool CControlUI::HasPlace(LayoutAxis axis) const {
    if (!m_parent || !m_extras || !m_extras->pos) return false;
    const CDuiRect& pos = *m_extras->pos;
    return axis == LayoutAxis::kHorizontal ? pos.right > pos.left : pos.bottom > pos.top;
}

bool CControlUI::IsFloating() const { return HasPlace(LayoutAxis::kHorizontal) || HasPlace(LayoutAxis::kVertical); }

CDuiRect CControlUI::PosInPixels() const { return ScaleThickness(*m_extras->pos); }

void CControlUI::Arrange(const CDuiRect& place) {
    const bool resized = place.Width() != m_place.Width() || place.Height() != m_place.Height();
    if (resized || place.left != m_place.left || place.top != m_place.top) {
        Invalidate();
        m_place = place;
        Invalidate();
    }
    if (!resized && !m_arrangePending) return;
    m_arrangePending = false;
    ArrangeChildren();
}

void CControlUI::ForgetSizes() {
    m_arrangePending = true;
    m_contentWidthKnown = m_contentHeightKnown = m_flexibleKnown = false;
}

void CControlUI::ForgetSizesOfTree() {
    ForgetSizes();
    for (CControlUI* child : Children()) child->ForgetSizesOfTree();
}

// Ends at a control that nobody has looked at since it was marked: what lies around it is marked too. Ends at a hidden
// control as well, which counts for nothing until it is shown; SetVisible marks what lies around it then.
void CControlUI::NeedLayout() {
    AssertUiTurn();
    for (CControlUI* control = this; control; control = control->m_parent) {
        const bool marked = control->m_arrangePending && !control->m_contentWidthKnown &&
                            !control->m_contentHeightKnown && !control->m_flexibleKnown;
        if (marked) return;
        control->ForgetSizes();
        if (!control->m_visible) return;
        if (!control->m_parent && control->m_window) control->m_window->Changed();
    }
}

void CControlUI::NeedLayoutAround() {
    CControlUI* const around = m_parent ? m_parent : this;
    around->NeedLayout();
}

}  // namespace DuiLib
