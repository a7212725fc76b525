#include <algorithm>

#include "duilib/container.h"
#include "tree/sharing.h"

namespace DuiLib {

std::wstring_view CHorizontalLayoutUI::GetClass() const { return L"HorizontalLayout"; }

// Calls visit(child, x, width) for each child that stands beside the others, x counted like `inner`.
template <class Visit>
void CHorizontalLayoutUI::VisitColumns(const CDuiRect& inner, Visit visit) {
    const int gap = ChildPadding();
    std::int64_t left = std::int64_t{inner.Width()} + gap;
    int takers = 0;
    for (CControlUI* child : Children()) {
        if (!InFlow(*child)) continue;
        const CDuiRect margin = child->Margin();
        left -= margin.left + margin.right + gap;
        if (child->IsFlexible(LayoutAxis::kHorizontal)) {
            ++takers;
        } else {
            left -= child->PreferredWidth();
        }
    }

    Sharing sharing(left, takers);
    int x = inner.left + (takers ? 0 : AlignX(ClampExtent(left)));
    for (CControlUI* child : Children()) {
        if (!InFlow(*child)) continue;
        const CDuiRect margin = child->Margin();
        const int width = child->IsFlexible(LayoutAxis::kHorizontal) ? sharing.Next() : child->PreferredWidth();
        x = ClampExtent(std::int64_t{x} + margin.left);
        visit(*child, x, width);
        x = ClampExtent(std::int64_t{x} + width + margin.right + gap);
    }
}

int CHorizontalLayoutUI::ContentWidth() {
    const CDuiRect inset = Inset();
    const int gap = ChildPadding();
    std::int64_t sum = inset.left + inset.right;
    bool first = true;
    for (CControlUI* child : Children()) {
        if (!InFlow(*child)) continue;
        const CDuiRect margin = child->Margin();
        sum += margin.left + child->PreferredWidth() + margin.right + (first ? 0 : gap);
        first = false;
    }
    return ClampExtent(sum);
}

int CHorizontalLayoutUI::ContentHeight(int width) {
    const CDuiRect inset = Inset();
    const CDuiRect inner{0, 0, std::max(0, width - inset.left - inset.right), 0};
    int highest = 0;
    VisitColumns(inner, [&](CControlUI& child, int, int childWidth) {
        const CDuiRect margin = child.Margin();
        highest = std::max(highest, child.PreferredHeight(childWidth) + margin.top + margin.bottom);
    });
    return ClampExtent(std::int64_t{highest} + inset.top + inset.bottom);
}

bool CHorizontalLayoutUI::ContentIsFlexible(LayoutAxis axis) {
    if (axis != LayoutAxis::kHorizontal) return false;
    if (!m_flexibleKnown) {
        m_flexible = std::any_of(Children().begin(), Children().end(), [](CControlUI* child) {
            return InFlow(*child) && child->IsFlexible(LayoutAxis::kHorizontal);
        });
        m_flexibleKnown = true;
    }
    return m_flexible;
}

void CHorizontalLayoutUI::ArrangeChildren() {
    const CDuiRect inner = InnerRect();
    VisitColumns(inner, [&](CControlUI& child, int x, int width) {
        const CDuiRect margin = child.Margin();
        const int height = child.FillHeight(inner.Height());
        const int y = inner.top + margin.top + AlignY(inner.Height() - margin.top - margin.bottom - height);
        Place(child, {x, y, x + width, y + height});
    });
    for (CControlUI* child : Children()) {
        if (child->m_visible && child->IsFloating()) PlaceOver(*child, inner);
    }
}

}  // namespace DuiLib
