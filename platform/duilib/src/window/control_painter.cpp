#include "window/control_painter.h"

#include <algorithm>

#include "drawing/picture_reference.h"
#include "duilib/container.h"
#include "duilib/render_engine.h"
#include "duilib/ui_culture.h"
#include "foundation/attribute_values.h"
#include "foundation/geometry_math.h"
#include "tree/control_extras.h"

namespace DuiLib {

namespace {

constexpr CDuiColor kFocusColor = 0xFF0A59F7;
constexpr int kFocusThickness = 2;        // [design px]
constexpr int kFocusDistance = 1;         // [design px] between a control and its ring
constexpr double kDisabledOpacity = 0.4;  // of what names no look of its own for it

struct Names {
    const SharedText bkcolor{L"bkcolor"}, hotbkcolor{L"hotbkcolor"}, pushedbkcolor{L"pushedbkcolor"};
    const SharedText bkimage{L"bkimage"}, bkround{L"bkround"};
    const SharedText bordersize{L"bordersize"}, bordercolor{L"bordercolor"}, borderfillcolor{L"borderfillcolor"};
    const SharedText hottextcolor{L"hottextcolor"}, disabledtextcolor{L"disabledtextcolor"};
    const SharedText normalimage{L"normalimage"}, hotimage{L"hotimage"}, pushedimage{L"pushedimage"};
};

const Names& TheNames() {
    static const auto& names = *new Names;  // never destroyed, like the controls that may outlive the program's end
    return names;
}

CDuiColor Faded(CDuiColor color, double opacity) {
    return (static_cast<CDuiColor>((color >> 24) * opacity) << 24) | (color & 0xFFFFFF);
}

}  // namespace

struct ControlPainter::Moment {
    bool hot;
    bool pushed;
    bool enabled;
    CDuiSize corner;  // [device px] radii

    double Opacity() const { return enabled ? 1 : kDisabledOpacity; }
};

// ---- The tree

void ControlPainter::PaintTree(CControlUI& control, CDuiPoint origin, bool enabled) const {
    if (!control.m_visible) return;
    const CDuiRect& at = control.m_place;
    const CDuiRect place{at.left + origin.x, at.top + origin.y, at.right + origin.x, at.bottom + origin.y};
    if (Intersection(place, area).Width() == 0) return;

    Moment moment{};
    moment.enabled = enabled && control.m_enabled;
    const bool under = control.TakesPointer() ? window.hovered == &control : window.IsHot(control);
    moment.pushed = moment.enabled && window.pressed == &control && under;
    moment.hot = moment.enabled && under && (!window.pressed || moment.pushed);
    if (const SharedText* round = control.FindAttribute(TheNames().bkround)) {
        const CDuiSize size = ParseSize(round->Get()).value_or(CDuiSize{});
        const CDuiSize scaled = CResourceManager::GetInstance()->Scale(size);
        moment.corner = {scaled.cx / 2, scaled.cy / 2};
    }
    PaintOwn(control, place, moment);

    const std::vector<CControlUI*>& children = control.Children();
    if (!children.empty()) {
        const bool rounded = moment.corner.cx > 0 && moment.corner.cy > 0;
        rounded ? canvas.ClipRounded(place, moment.corner) : canvas.Clip(place);
        const ControlPainter inner{canvas, window, Intersection(area, place)};
        for (CControlUI* child : children) inner.PaintTree(*child, {place.left, place.top}, moment.enabled);
        canvas.Restore();
    }
    control.PaintOver(canvas, place);
}

bool ControlPainter::HasHotLook(const CControlUI& control) {
    const Names& names = TheNames();
    return control.FindAttribute(names.hottextcolor) || control.FindAttribute(names.hotbkcolor) ||
           control.FindAttribute(names.hotimage);
}

// ---- One control

void ControlPainter::PaintOwn(CControlUI& control, const CDuiRect& place, const Moment& moment) const {
    PaintGround(control, place, moment);
    const Names& names = TheNames();
    if (const SharedText* picture = control.FindAttribute(names.bkimage)) PaintPicture(*picture, place, moment);
    const SharedText* picture = nullptr;
    if (moment.pushed) picture = control.FindAttribute(names.pushedimage);
    if (!picture && moment.hot) picture = control.FindAttribute(names.hotimage);
    if (!picture) picture = control.FindAttribute(names.normalimage);
    if (picture) PaintPicture(*picture, place, moment);
    PaintBorder(control, place, moment);
    PaintText(control, place, moment);
}

void ControlPainter::PaintGround(const CControlUI& control, const CDuiRect& place, const Moment& moment) const {
    const Names& names = TheNames();
    const SharedText* color = nullptr;
    if (moment.pushed) color = control.FindAttribute(names.pushedbkcolor);
    if (!color && moment.hot) color = control.FindAttribute(names.hotbkcolor);
    if (!color) color = control.FindAttribute(names.bkcolor);
    if (!color) return;
    if (const auto ground = ParseColor(color->Get())) canvas.Fill(place, moment.corner, *ground);
}

void ControlPainter::PaintPicture(const SharedText& attribute, const CDuiRect& place, const Moment& moment) const {
    const auto picture = ParsePicture(attribute.Get());
    if (!picture || picture->file.empty()) return;
    const std::filesystem::path file = FindPicture(picture->file, CResourceManager::GetInstance()->GetScale());
    const bool mirrored = picture->reverse && UICulture::GetInstance()->IsRightToLeft();
    if (!file.empty()) canvas.Picture(place, file, mirrored, moment.Opacity());
}

// The fill belongs to the border: without one there is none.
void ControlPainter::PaintBorder(const CControlUI& control, const CDuiRect& place, const Moment& moment) const {
    const Names& names = TheNames();
    const SharedText* const size = control.FindAttribute(names.bordersize);
    const int thickness = size ? ParseInt(size->Get()).value_or(0) : 0;
    if (thickness <= 0) return;
    const SharedText* const fill = control.FindAttribute(names.borderfillcolor);
    if (const auto color = fill ? ParseColor(fill->Get()) : std::nullopt) canvas.Fill(place, moment.corner, *color);
    const SharedText* const line = control.FindAttribute(names.bordercolor);
    const auto color = line ? ParseColor(line->Get()) : std::nullopt;
    canvas.Border(place, moment.corner, CResourceManager::GetInstance()->Scale(thickness),
                  color.value_or(control.m_textColor));
}

void ControlPainter::PaintText(const CControlUI& control, const CDuiRect& place, const Moment& moment) const {
    const CDuiString& text = control.m_text.Get();
    if (text.IsEmpty()) return;
    const Names& names = TheNames();
    const SharedText* const own = !moment.enabled ? control.FindAttribute(names.disabledtextcolor)
                                  : moment.hot    ? control.FindAttribute(names.hottextcolor)
                                                  : nullptr;
    const auto other = own ? ParseColor(own->Get()) : std::nullopt;
    const CDuiColor color = other ? *other : Faded(control.m_textColor, moment.Opacity());

    CDuiRect padding = control.m_extras ? ScaleThickness(control.m_extras->textPadding) : CDuiRect{};
    if (UICulture::GetInstance()->IsRightToLeft()) std::swap(padding.left, padding.right);
    const CDuiRect room{place.left + padding.left, place.top + padding.top, place.right - padding.right,
                        place.bottom - padding.bottom};
    const CResourceManager& resources = *CResourceManager::GetInstance();
    canvas.Text(room, text, resources.GetFont(control.m_font), resources.GetScale(), color, control.m_textStyle);
}

// ---- Focus

int ControlPainter::FocusMargin() {
    const CResourceManager& resources = *CResourceManager::GetInstance();
    return resources.Scale(kFocusThickness) + resources.Scale(kFocusDistance);
}

void ControlPainter::PaintFocus(CControlUI& control) const {
    const CDuiRect place = control.PlaceInWindow();
    CDuiRect visible = area;
    for (CControlUI* around = control.m_parent; around; around = around->m_parent) {
        if (around->MovesContent()) visible = Intersection(visible, around->PlaceInWindow());
    }
    const int margin = FocusMargin();
    const SharedText* const round = control.FindAttribute(TheNames().bkround);
    const CDuiSize size = round ? ParseSize(round->Get()).value_or(CDuiSize{}) : CDuiSize{8, 8};
    const CDuiSize scaled = CResourceManager::GetInstance()->Scale(size);
    canvas.Clip(visible);
    canvas.Border(Inflated(place, margin), {scaled.cx / 2 + margin, scaled.cy / 2 + margin},
                  CResourceManager::GetInstance()->Scale(kFocusThickness), kFocusColor);
    canvas.Restore();
}

}  // namespace DuiLib
