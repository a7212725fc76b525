#include "duilib/scroll_view.h"

#include <algorithm>
#include <cmath>

#include "drawing/canvas.h"
#include "duilib/resource_manager.h"
#include "duilib/ui_culture.h"
#include "foundation/diagnostics.h"
#include "foundation/geometry_math.h"
#include "tree/tree_window.h"

namespace DuiLib {

namespace {

constexpr double kSettleTime = 0.06;  // [s] in which a movement does 63 % of its way
constexpr double kArrived = 0.25;     // [design px] nearer than this is there
constexpr double kNotch = 60;         // [design px] about a row
constexpr double kLine = 40;          // [design px]
constexpr double kOverlap = 40;       // [design px] that stays in sight from page to page
constexpr int kBarWidth = 12;         // [design px] that take the pointer
constexpr int kThumbWidth = 4;        // [design px] that are painted
constexpr int kThumbMargin = 4;       // [design px] from the edge
constexpr int kThumbMinHeight = 32;   // [design px]
constexpr CDuiColor kThumbColor = 0x59000000;
constexpr CDuiColor kThumbDraggedColor = 0x8C000000;

}  // namespace

std::wstring_view CScrollViewUI::GetClass() const { return L"ScrollView"; }

// ---- Layout

int CScrollViewUI::ContentHeight(int) { return 0; }
bool CScrollViewUI::ContentIsFlexible(LayoutAxis) { return true; }

void CScrollViewUI::ArrangeChildren() {
    const CDuiRect inner = InnerRect();
    m_contentHeight = 0;
    for (CControlUI* child : Children()) {
        if (!child->IsVisible()) continue;
        const CDuiRect margin = child->Margin();
        const int height = child->HasPlace(LayoutAxis::kVertical)
                               ? child->PosInPixels().bottom
                               : child->PreferredHeight(child->FillWidth(inner.Width())) + margin.top + margin.bottom;
        m_contentHeight = std::max(m_contentHeight, height);
    }
    m_position = std::clamp(m_position, 0.0, GetScrollRange());
    m_target = std::clamp(m_target, 0.0, GetScrollRange());
    const int offset = OffsetInPixels();
    for (CControlUI* child : Children()) {
        if (!child->IsVisible()) continue;
        if (child->IsFloating()) {
            PlaceOver(*child, {inner.left, inner.top - offset, inner.right, inner.bottom - offset});
            continue;
        }
        const CDuiRect margin = child->Margin();
        const int width = child->FillWidth(inner.Width());
        const int x = inner.left + margin.left + AlignX(inner.Width() - margin.left - margin.right - width);
        const int top = inner.top + margin.top - offset;
        const int height = std::max(child->PreferredHeight(width), inner.Height() - margin.top - margin.bottom);
        Place(*child, {x, top, x + width, top + height});
    }
}

double CScrollViewUI::GetScrollPos() const {
    AssertUiTurn();
    return m_position;
}

double CScrollViewUI::GetScrollRange() {
    AssertUiTurn();
    const int hidden = std::max(0, m_contentHeight - InnerRect().Height());
    const unsigned scale = CResourceManager::GetInstance()->GetScale();
    return scale == 0 ? 0 : hidden * 100.0 / scale;
}

int CScrollViewUI::OffsetInPixels() const {
    return static_cast<int>(std::lround(m_position * CResourceManager::GetInstance()->GetScale() / 100.0));
}

// ---- Movement

void CScrollViewUI::ScrollTo(double position, bool smoothly) {
    AssertUiTurn();
    if (m_window) m_window->Layout();
    m_target = std::clamp(position, 0.0, GetScrollRange());
    if (m_target == m_position) return;
    if (!smoothly || !m_window) {
        m_position = m_target;
        MoveContent();
        return;
    }
    if (m_moving) return;
    m_moving = true;
    m_lastTick = {};
    m_window->BeginTicks(*this);
}

void CScrollViewUI::ScrollBy(double distance, bool smoothly) {
    AssertUiTurn();
    ScrollTo(m_target + distance, smoothly);
}

bool CScrollViewUI::Scroll(ScrollStep step, double steps) {
    if (GetScrollRange() <= 0) return false;
    ScrollBy(steps * StepLength(step), true);
    return true;
}

double CScrollViewUI::StepLength(ScrollStep step) {
    switch (step) {
        case ScrollStep::kNotch:
            return kNotch;
        case ScrollStep::kLine:
            return kLine;
        case ScrollStep::kPage:
            return CResourceManager::GetInstance()->RestoreScale(GetHeight()) - kOverlap;
        case ScrollStep::kWhole:
            return GetScrollRange();
    }
    return 0;
}

bool CScrollViewUI::Tick(TimePoint now) {
    AssertUiTurn();
    if (!m_moving) return false;
    const double elapsed =
        m_lastTick == TimePoint{} ? 1 / 60.0 : std::chrono::duration<double>(now - m_lastTick).count();
    m_lastTick = now;
    m_position += (m_target - m_position) * (1 - std::exp(-elapsed / kSettleTime));
    if (std::abs(m_target - m_position) < kArrived) {
        m_position = m_target;
        m_moving = false;
    }
    MoveContent();
    return m_moving;
}

void CScrollViewUI::MoveContent() {
    Invalidate();
    NeedLayout();
}

void CScrollViewUI::EnsureVisible(CControlUI& control, bool smoothly) {
    AssertUiTurn();
    const CDuiRect place = control.GetPos();
    const CDuiRect view = GetPos();
    const unsigned scale = CResourceManager::GetInstance()->GetScale();
    if (scale == 0 || view.Height() <= 0) return;
    // Where the control is once the movement under way has ended.
    const int moved = static_cast<int>(std::lround((m_target - m_position) * scale / 100.0));
    const int above = view.top - (place.top - moved);
    const int below = (place.bottom - moved) - view.bottom;
    if (above > 0) {
        ScrollBy(-above * 100.0 / scale, smoothly);
    } else if (below > 0) {
        ScrollBy(std::min(below, -above) * 100.0 / scale, smoothly);
    }
}

// ---- The bar

CScrollViewUI::Thumb CScrollViewUI::BarThumb() const {
    const int view = InnerRect().Height();
    if (m_contentHeight <= view || view <= 0) return {};
    const CResourceManager& resources = *CResourceManager::GetInstance();
    const int margin = resources.Scale(kThumbMargin);
    const int track = std::max(0, m_place.Height() - 2 * margin);
    Thumb thumb;
    thumb.height = static_cast<int>(std::int64_t{track} * view / m_contentHeight);
    thumb.height = std::min(track, std::max(thumb.height, resources.Scale(kThumbMinHeight)));
    thumb.travel = track - thumb.height;
    thumb.top = margin + static_cast<int>(std::int64_t{thumb.travel} * OffsetInPixels() / (m_contentHeight - view));
    return thumb;
}

CDuiRect CScrollViewUI::BarPlace(const CDuiRect& place) const {
    const int width = CResourceManager::GetInstance()->Scale(kBarWidth);
    if (UICulture::GetInstance()->IsRightToLeft()) return {place.left, place.top, place.left + width, place.bottom};
    return {place.right - width, place.top, place.right, place.bottom};
}

void CScrollViewUI::PaintOver(Canvas& canvas, const CDuiRect& place) {
    const Thumb thumb = BarThumb();
    if (thumb.height == 0) return;
    const CResourceManager& resources = *CResourceManager::GetInstance();
    const CDuiRect bar = BarPlace(place);
    const int width = resources.Scale(kThumbWidth);
    const int left = bar.left + (bar.Width() - width) / 2;
    const int top = place.top + thumb.top;
    canvas.Fill({left, top, left + width, top + thumb.height}, {width / 2, width / 2},
                m_dragged ? kThumbDraggedColor : kThumbColor);
}

bool CScrollViewUI::BeginDrag(CDuiPoint point) {
    const Thumb thumb = BarThumb();
    if (thumb.height == 0 || !BarPlace({0, 0, m_place.Width(), m_place.Height()}).Contains(point)) return false;
    const bool onThumb = point.y >= thumb.top && point.y < thumb.top + thumb.height;
    m_dragOffset = onThumb ? point.y - thumb.top : thumb.height / 2;
    m_dragged = true;
    DragTo(point);
    Invalidate();
    return true;
}

void CScrollViewUI::DragTo(CDuiPoint point) {
    const Thumb thumb = BarThumb();
    if (!m_dragged || thumb.travel <= 0) return;
    const int margin = CResourceManager::GetInstance()->Scale(kThumbMargin);
    m_moving = false;
    ScrollTo(GetScrollRange() * (point.y - m_dragOffset - margin) / thumb.travel, false);
}

void CScrollViewUI::EndDrag() {
    m_dragged = false;
    Invalidate();
}

}  // namespace DuiLib
