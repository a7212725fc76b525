#include "duilib/container.h"

#include <algorithm>
#include <utility>

#include "duilib/resource_manager.h"
#include "duilib/ui_culture.h"
#include "foundation/attribute_values.h"
#include "foundation/diagnostics.h"
#include "foundation/geometry_math.h"

namespace DuiLib {

CContainerUI::CContainerUI() = default;

CContainerUI::~CContainerUI() {
    for (CControlUI* child : m_items) {
        child->m_parent = nullptr;
        delete child;
    }
}

std::wstring_view CContainerUI::GetClass() const { return L"Container"; }

// ---- Children

bool CContainerUI::Add(CControlUI* control) {
    AssertUiTurn();
    if (!control || control->m_parent || control->m_window) return false;
    for (const CControlUI* around = this; around; around = around->m_parent) {
        if (around == control) return false;
    }
    m_items.push_back(control);
    control->m_parent = this;
    if (m_window) control->AttachTree(*m_window);
    NeedLayout();
    control->Invalidate();
    return true;
}

bool CContainerUI::Remove(CControlUI* control) {
    AssertUiTurn();
    if (!control || control->m_parent != this) return false;
    delete control;
    return true;
}

void CContainerUI::RemoveAll() {
    AssertUiTurn();
    Invalidate();
    const std::vector<CControlUI*> removed = std::exchange(m_items, {});
    for (CControlUI* child : removed) {
        child->m_parent = nullptr;
        delete child;
    }
    NeedLayout();
}

int CContainerUI::GetCount() const {
    AssertUiTurn();
    return static_cast<int>(m_items.size());
}

CControlUI* CContainerUI::GetItemAt(int index) const {
    AssertUiTurn();
    return index >= 0 && index < GetCount() ? m_items[static_cast<std::size_t>(index)] : nullptr;
}

void CContainerUI::Forget(CControlUI* child) {
    child->Invalidate();
    m_items.erase(std::find(m_items.begin(), m_items.end(), child));
    NeedLayout();
}

// ---- What the layouts share

CDuiRect CContainerUI::Inset() const { return ScaleThickness(m_inset); }

CDuiRect CContainerUI::InnerRect() const {
    const CDuiRect inset = Inset();
    const int right = std::max(inset.left, m_place.Width() - inset.right);
    const int bottom = std::max(inset.top, m_place.Height() - inset.bottom);
    return {inset.left, inset.top, right, bottom};
}

int CContainerUI::ChildPadding() const { return CResourceManager::GetInstance()->Scale(m_childPadding); }

bool CContainerUI::InFlow(const CControlUI& child) { return child.m_visible && !child.IsFloating(); }

void CContainerUI::Place(CControlUI& child, CDuiRect place) {
    if (UICulture::GetInstance()->IsRightToLeft()) {
        place = {m_place.Width() - place.right, place.top, m_place.Width() - place.left, place.bottom};
    }
    child.Arrange(place);
}

namespace {

int Offset(bool center, bool end, int space) {
    if (space <= 0) return 0;
    return end ? space : center ? space / 2 : 0;
}

}  // namespace

int CContainerUI::AlignX(int space) const {
    return Offset(m_childAlign == Alignment::kCenter, m_childAlign == Alignment::kEnd, space);
}

int CContainerUI::AlignY(int space) const {
    return Offset(m_childVAlign == Alignment::kCenter, m_childVAlign == Alignment::kEnd, space);
}

void CContainerUI::PlaceOver(CControlUI& child, const CDuiRect& inner) {
    const CDuiRect margin = child.Margin();
    const int width = child.FillWidth(inner.Width());
    const int height = child.FillHeight(inner.Height());
    CDuiRect place;
    place.left = inner.left + margin.left + AlignX(inner.Width() - margin.left - margin.right - width);
    place.top = inner.top + margin.top + AlignY(inner.Height() - margin.top - margin.bottom - height);
    place.right = place.left + width;
    place.bottom = place.top + height;
    if (child.IsFloating()) {
        const CDuiRect pos = child.PosInPixels();
        if (child.HasPlace(LayoutAxis::kHorizontal)) {
            place.left = inner.left + pos.left;
            place.right = inner.left + pos.right;
        }
        if (child.HasPlace(LayoutAxis::kVertical)) {
            place.top = inner.top + pos.top;
            place.bottom = inner.top + pos.bottom;
        }
    }
    Place(child, place);
}

// ---- One over the other

int CContainerUI::ContentWidth() {
    const CDuiRect inset = Inset();
    int widest = 0;
    for (CControlUI* child : m_items) {
        if (!child->m_visible) continue;
        const CDuiRect margin = child->Margin();
        const int width = child->HasPlace(LayoutAxis::kHorizontal)
                              ? child->PosInPixels().right
                              : child->PreferredWidth() + margin.left + margin.right;
        widest = std::max(widest, width);
    }
    return ClampExtent(std::int64_t{widest} + inset.left + inset.right);
}

int CContainerUI::ContentHeight(int width) {
    const CDuiRect inset = Inset();
    const int inner = std::max(0, width - inset.left - inset.right);
    int highest = 0;
    for (CControlUI* child : m_items) {
        if (!child->m_visible) continue;
        const CDuiRect margin = child->Margin();
        const int childWidth =
            child->HasPlace(LayoutAxis::kHorizontal) ? child->PosInPixels().Width() : child->FillWidth(inner);
        const int height = child->HasPlace(LayoutAxis::kVertical)
                               ? child->PosInPixels().bottom
                               : child->PreferredHeight(childWidth) + margin.top + margin.bottom;
        highest = std::max(highest, height);
    }
    return ClampExtent(std::int64_t{highest} + inset.top + inset.bottom);
}

bool CContainerUI::ContentIsFlexible(LayoutAxis) { return false; }

void CContainerUI::ArrangeChildren() {
    const CDuiRect inner = InnerRect();
    for (CControlUI* child : m_items) {
        if (child->m_visible) PlaceOver(*child, inner);
    }
}

}  // namespace DuiLib
