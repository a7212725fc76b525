#include <algorithm>

#include "duilib/container.h"
#include "tree/sharing.h"

namespace DuiLib {

std::wstring_view CVerticalLayoutUI::GetClass() const { return L"VerticalLayout"; }

int CVerticalLayoutUI::ContentWidth() {
    const CDuiRect inset = Inset();
    int widest = 0;
    for (CControlUI* child : Children()) {
        if (!InFlow(*child)) continue;
        const CDuiRect margin = child->Margin();
        widest = std::max(widest, child->PreferredWidth() + margin.left + margin.right);
    }
    return ClampExtent(std::int64_t{widest} + inset.left + inset.right);
}

int CVerticalLayoutUI::ContentHeight(int width) {
    const CDuiRect inset = Inset();
    const int inner = std::max(0, width - inset.left - inset.right);
    const int gap = ChildPadding();
    std::int64_t sum = inset.top + inset.bottom;
    bool first = true;
    for (CControlUI* child : Children()) {
        if (!InFlow(*child)) continue;
        const CDuiRect margin = child->Margin();
        sum += margin.top + child->PreferredHeight(child->FillWidth(inner)) + margin.bottom + (first ? 0 : gap);
        first = false;
    }
    return ClampExtent(sum);
}

bool CVerticalLayoutUI::ContentIsFlexible(LayoutAxis axis) {
    if (axis != LayoutAxis::kVertical) return false;
    if (!m_flexibleKnown) {
        m_flexible = std::any_of(Children().begin(), Children().end(), [](CControlUI* child) {
            return InFlow(*child) && child->IsFlexible(LayoutAxis::kVertical);
        });
        m_flexibleKnown = true;
    }
    return m_flexible;
}

void CVerticalLayoutUI::ArrangeChildren() {
    const CDuiRect inner = InnerRect();
    const int gap = ChildPadding();
    std::int64_t left = std::int64_t{inner.Height()} + gap;
    int takers = 0;
    for (CControlUI* child : Children()) {
        if (!InFlow(*child)) continue;
        const CDuiRect margin = child->Margin();
        left -= margin.top + margin.bottom + gap;
        if (child->IsFlexible(LayoutAxis::kVertical)) {
            ++takers;
        } else {
            left -= child->PreferredHeight(child->FillWidth(inner.Width()));
        }
    }

    Sharing sharing(left, takers);
    int y = inner.top + (takers ? 0 : AlignY(ClampExtent(left)));
    for (CControlUI* child : Children()) {
        if (!child->m_visible) continue;
        if (child->IsFloating()) {
            PlaceOver(*child, inner);
            continue;
        }
        const CDuiRect margin = child->Margin();
        const int width = child->FillWidth(inner.Width());
        const int height = child->IsFlexible(LayoutAxis::kVertical) ? sharing.Next() : child->PreferredHeight(width);
        const int x = inner.left + margin.left + AlignX(inner.Width() - margin.left - margin.right - width);
        y = ClampExtent(std::int64_t{y} + margin.top);
        Place(*child, {x, y, x + width, y + height});
        y = ClampExtent(std::int64_t{y} + height + margin.bottom + gap);
    }
}

}  // namespace DuiLib
