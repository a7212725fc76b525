// Children in a line: side by side (CHorizontalLayoutUI) or one below the other (CVerticalLayoutUI).
#include <algorithm>

#include "duilib/container.h"
#include "foundation/geometry_math.h"

namespace DuiLib {

namespace {

// Deals out what the others of a line leave: equal shares, the first ones a pixel larger where it does not divide;
// nothing when nothing is left.
class Sharing {
public:
    Sharing(std::int64_t left, int takers) {
        if (left <= 0 || takers == 0) return;
        m_each = static_cast<int>(ClampExtent(left) / takers);
        m_larger = static_cast<int>(ClampExtent(left) % takers);
    }
    int Next() { return m_each + (m_larger-- > 0 ? 1 : 0); }

private:
    int m_each = 0;
    int m_larger = 0;
};

}  // namespace

// What both have in common; lengths and offsets are those along the line. All [device px].
struct LineLayout {
    CContainerUI& box;
    const LayoutAxis axis;

    bool IsRow() const { return axis == LayoutAxis::kHorizontal; }
    int Start(const CDuiRect& area) const { return IsRow() ? area.left : area.top; }
    int End(const CDuiRect& area) const { return IsRow() ? area.right : area.bottom; }

    CDuiRect InnerOf(int width) const {
        const CDuiRect inset = box.Inset();
        return {0, 0, std::max(0, width - inset.left - inset.right), 0};
    }

    // Of a child that does not take what others leave.
    int Length(CControlUI& child, const CDuiRect& inner) const {
        return IsRow() ? child.PreferredWidth() : child.PreferredHeight(child.FillWidth(inner.Width()));
    }

    // Calls visit(child, offset, length) for each child in flow, the offset counted like `inner`.
    template <class Visit>
    void VisitLine(const CDuiRect& inner, Visit visit) const {
        const int gap = box.ChildPadding();
        std::int64_t left = std::int64_t{End(inner)} - Start(inner) + gap;
        int takers = 0;
        for (CControlUI* child : box.Children()) {
            if (!box.InFlow(*child)) continue;
            const CDuiRect margin = child->Margin();
            left -= Start(margin) + End(margin) + gap;
            if (child->IsFlexible(axis)) {
                ++takers;
            } else {
                left -= Length(*child, inner);
            }
        }

        Sharing sharing(left, takers);
        const int unused = ClampExtent(left);
        int at = Start(inner) + (takers ? 0 : IsRow() ? box.AlignX(unused) : box.AlignY(unused));
        for (CControlUI* child : box.Children()) {
            if (!box.InFlow(*child)) continue;
            const CDuiRect margin = child->Margin();
            const int length = child->IsFlexible(axis) ? sharing.Next() : Length(*child, inner);
            at = ClampExtent(std::int64_t{at} + Start(margin));
            visit(*child, at, length);
            at = ClampExtent(std::int64_t{at} + length + End(margin) + gap);
        }
    }

    // The line's own length without flexible children taking more.
    int ContentLength(const CDuiRect& inner) const {
        const CDuiRect inset = box.Inset();
        const int gap = box.ChildPadding();
        std::int64_t sum = Start(inset) + End(inset);
        bool first = true;
        for (CControlUI* child : box.Children()) {
            if (!box.InFlow(*child)) continue;
            const CDuiRect margin = child->Margin();
            sum += Start(margin) + Length(*child, inner) + End(margin) + (first ? 0 : gap);
            first = false;
        }
        return ClampExtent(sum);
    }

    int WidthOfColumn() const {
        const CDuiRect inset = box.Inset();
        int widest = 0;
        for (CControlUI* child : box.Children()) {
            if (!box.InFlow(*child)) continue;
            const CDuiRect margin = child->Margin();
            widest = std::max(widest, child->PreferredWidth() + margin.left + margin.right);
        }
        return ClampExtent(std::int64_t{widest} + inset.left + inset.right);
    }

    int HeightOfRow(int width) const {
        const CDuiRect inset = box.Inset();
        int highest = 0;
        VisitLine(InnerOf(width), [&](CControlUI& child, int, int childWidth) {
            const CDuiRect margin = child.Margin();
            highest = std::max(highest, child.PreferredHeight(childWidth) + margin.top + margin.bottom);
        });
        return ClampExtent(std::int64_t{highest} + inset.top + inset.bottom);
    }

    // A line takes what others leave when something in it does.
    bool IsFlexible() const {
        if (!box.m_flexibleKnown) {
            box.m_flexible = std::ranges::any_of(
                box.Children(), [this](CControlUI* child) { return box.InFlow(*child) && child->IsFlexible(axis); });
            box.m_flexibleKnown = true;
        }
        return box.m_flexible;
    }

    void Arrange() const {
        const CDuiRect inner = box.InnerRect();
        VisitLine(inner, [&](CControlUI& child, int at, int length) {
            const CDuiRect margin = child.Margin();
            if (IsRow()) {
                const int height = child.FillHeight(inner.Height());
                const int y = inner.top + margin.top + box.AlignY(inner.Height() - margin.top - margin.bottom - height);
                box.Place(child, {at, y, at + length, y + height});
            } else {
                const int width = child.FillWidth(inner.Width());
                const int x = inner.left + margin.left + box.AlignX(inner.Width() - margin.left - margin.right - width);
                box.Place(child, {x, at, x + width, at + length});
            }
        });
        for (CControlUI* child : box.Children()) {
            if (child->m_visible && child->IsFloating()) box.PlaceOver(*child, inner);
        }
    }
};

// ---- CHorizontalLayoutUI

std::wstring_view CHorizontalLayoutUI::GetClass() const { return L"HorizontalLayout"; }
int CHorizontalLayoutUI::ContentWidth() { return LineLayout{*this, LayoutAxis::kHorizontal}.ContentLength({}); }
int CHorizontalLayoutUI::ContentHeight(int width) {
    return LineLayout{*this, LayoutAxis::kHorizontal}.HeightOfRow(width);
}
bool CHorizontalLayoutUI::ContentIsFlexible(LayoutAxis axis) {
    return axis == LayoutAxis::kHorizontal && LineLayout{*this, axis}.IsFlexible();
}
void CHorizontalLayoutUI::ArrangeChildren() { LineLayout{*this, LayoutAxis::kHorizontal}.Arrange(); }

// ---- CVerticalLayoutUI

std::wstring_view CVerticalLayoutUI::GetClass() const { return L"VerticalLayout"; }
int CVerticalLayoutUI::ContentWidth() { return LineLayout{*this, LayoutAxis::kVertical}.WidthOfColumn(); }
int CVerticalLayoutUI::ContentHeight(int width) {
    const LineLayout line{*this, LayoutAxis::kVertical};
    return line.ContentLength(line.InnerOf(width));
}
bool CVerticalLayoutUI::ContentIsFlexible(LayoutAxis axis) {
    return axis == LayoutAxis::kVertical && LineLayout{*this, axis}.IsFlexible();
}
void CVerticalLayoutUI::ArrangeChildren() { LineLayout{*this, LayoutAxis::kVertical}.Arrange(); }

}  // namespace DuiLib
