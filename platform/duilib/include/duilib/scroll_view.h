#pragma once

#include <chrono>

#include "duilib/container.h"

namespace DuiLib {

// A container whose content may be higher than itself and is moved up and down in it: by the wheel, the keyboard, the
// bar at its edge, or to show what has the focus. Each child is as high as it likes and at least as high as the view.
// The movement is smooth: whoever shows the window calls CPaintManagerUI::Tick until it has come to rest.
class DUILIB_API CScrollViewUI : public CContainerUI {
public:
    using CControlUI::TimePoint;

    std::wstring_view GetClass() const override;

    // [design px] How far the content is moved up, and how far it can be.
    double GetScrollPos() const;
    double GetScrollRange();

    void ScrollTo(double position, bool smoothly);  // as far as it goes
    void ScrollBy(double distance, bool smoothly);  // from where the movement under way leads to

    // Scrolls as little as shows the control, which lies in this view, whole, or its top.
    void EnsureVisible(CControlUI& control, bool smoothly) override;

    // Moves on; true while there is more to move.
    bool Tick(TimePoint now) override;

protected:
    int ContentHeight(int width) override;
    bool ContentIsFlexible(LayoutAxis axis) override;
    void ArrangeChildren() override;
    void PaintOver(Canvas& canvas, const CDuiRect& place) override;
    bool MovesContent() const override { return true; }
    bool Scroll(ScrollStep step, double steps) override;
    bool BeginDrag(CDuiPoint point) override;  // on the bar
    void DragTo(CDuiPoint point) override;
    void EndDrag() override;

private:
    struct Thumb {
        int top = 0;  // [device px] within the view
        int height = 0;
        int travel = 0;  // how far its top can move
    };
    Thumb BarThumb() const;  // height 0 when everything is shown
    CDuiRect BarPlace(const CDuiRect& place) const;
    int OffsetInPixels() const;
    void MoveContent();
    double StepLength(ScrollStep step);  // [design px]

    double m_position = 0;  // [design px]
    double m_target = 0;
    int m_contentHeight = 0;  // [device px] as laid out
    int m_dragOffset = 0;     // of the pointer from the thumb's top
    bool m_dragged = false;
    bool m_moving = false;
    TimePoint m_lastTick;
};

}  // namespace DuiLib
